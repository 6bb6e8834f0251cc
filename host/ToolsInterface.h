#pragma once

#include "PluginInterface.h"
#include "ToolsType.h"

#include <QList>

class CommandHandlerInterface;
class QVXLModuleInterface;
class ToolsInterfacePrivate;

/// Base of all tools plug-ins. The host takes one prototype from the plug-in's factory and asks it
/// for a working tool for each module and motor through `clone`. GUI thread.
class ToolsInterface : public PluginInterface
{
    Q_OBJECT

public:
    /// `icon` is a resource path of the host. `module` may be null: a prototype, or a tool without
    /// a module.
    ToolsInterface(const QString &name, const QString &className, ToolsType::Types type,
                   unsigned char motor, QVXLModuleInterface *module, QString icon, QWidget *parent);
    ~ToolsInterface() override;

    /// The module passed to the constructor; null when it had none or the module is gone.
    QVXLModuleInterface *module();

    /// The motor passed to the constructor.
    int motorNumber();

    /// The request queue of the module; null without a connection.
    CommandHandlerInterface *commandHandler();

    /// Sends one user-function request to the module and returns the reply's 32-bit value. Both
    /// bytes go out with the request and are overwritten with bytes of the reply; when the request
    /// fails the bytes stay as they were and the result is 0.
    int userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg);

    /// The title under which the host lists the tool; with the flag followed by the motor.
    QString toolsName(bool withMotor);
    void setToolsName(QString name);

public slots:
    /// A tool of the same module was shown or hidden.
    virtual void siblingIsVisible(const QString &key, bool isVisible);

public:
    /// The host has put the tool on screen / taken it off. Not the same as Qt's show and hide
    /// events, which also come when the whole window is minimised.
    virtual void showPlugin();
    virtual void hidePlugin();

    virtual bool isUsableForVariant(int variant);
    virtual QList<int> compatibleVariants();
    virtual QWidget *subWidget(int index);
    virtual void updateSubWidgetValues(int index);
    virtual void registerSubWidgetTraces(int index);
    virtual void unRegisterSubWidgetTraces(int index);

    /// A new working tool for a motor of a module; the caller owns it. Null when the plug-in makes
    /// none.
    virtual ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module);

    virtual void handleMessageFromToolsPlugin(int message, QString text);
    virtual void handleChangedParameterList();

    /// Shows `text` in the host's status bar for a number of milliseconds; 0 keeps it.
    virtual void showStatusMessage(const QString &text, int timeoutMs);

private:
    friend class ToolsInterfacePrivate;
    std::unique_ptr<ToolsInterfacePrivate> d;
};

Q_DECLARE_INTERFACE(ToolsInterface, "com.qvx.ToolsInterface/2.0")
