#pragma once

#include "PluginInterface.h"
#include "ToolsType.h"

#include <QList>

class CommandHandlerInterface;
class QVXLModuleInterface;

class ToolsInterface : public PluginInterface
{
    Q_OBJECT

public:
    ToolsInterface(const QString &name, const QString &className, ToolsType::Types type,
                   unsigned char motor, QVXLModuleInterface *module, QString icon, QWidget *parent);
    ~ToolsInterface() override;

    QVXLModuleInterface *module();
    int motorNumber();
    CommandHandlerInterface *commandHandler();
    int userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg);
    QString toolsName(bool withMotor);
    void setToolsName(QString name);
    int requestCount() const { return m_requests; }
    ToolsType::Types toolsType() const { return m_kind; }

public slots:
    virtual void siblingIsVisible(const QString &key, bool isVisible);

public:
    virtual void showPlugin();
    virtual void hidePlugin();
    virtual bool isUsableForVariant(int variant);
    virtual QList<int> compatibleVariants();
    virtual QWidget *subWidget(int index);
    virtual void updateSubWidgetValues(int index);
    virtual void registerSubWidgetTraces(int index);
    virtual void unRegisterSubWidgetTraces(int index);
    virtual ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module);
    virtual void handleMessageFromToolsPlugin(int message, QString text);
    virtual void handleChangedParameterList();
    virtual void showStatusMessage(const QString &text, int timeoutMs);

private:
    QString m_title;
    QVXLModuleInterface *m_owner;
    int m_requests = 0;
    ToolsType::Types m_kind;
    unsigned char m_axis;
};

Q_DECLARE_INTERFACE(ToolsInterface, "com.qvx.ToolsInterface/2.0")
