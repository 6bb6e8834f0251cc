#pragma once

#include "DeviceTreeOperation.h"
#include "ExportTypes.h"

#include <QString>
#include <QVariant>
#include <QWidget>

#include <memory>

class PluginInterfacePrivate;

/// Base of everything that the host loads or connects: modules and tools. A plug-in is known to the
/// others by its key while the host's registry holds it. GUI thread.
class PluginInterface : public QWidget
{
    Q_OBJECT

public:
    ~PluginInterface() override;

    /// The name that the plug-in was created with.
    QString name() const;

    /// The unique key in the host's registry. The keys of all plug-ins that belong to a module
    /// begin with that module's key. Empty for a plug-in that is not registered.
    QString key() const;

    /// The kind of plug-in; 3 marks a tools plug-in.
    int pluginType();

    /// Publishes a value to all other registered plug-ins, which get it through `importValue`.
    void exportValue(const export_type_t *type, QVariant value);

    /// Version text for the host's list of plug-ins.
    virtual QString version();

    /// The host is about to end.
    virtual void aboutToExit();

    virtual void setEnabled(bool enabled);

    /// A value that `sender` published; plug-ins ignore types that they do not know.
    virtual void importValue(const export_type_t *type, QVariant value, QObject *sender);

signals:
    /// Asks the host's device tree for an operation on the plug-in with a key. An empty or unknown
    /// key is ignored.
    void signalDeviceTreeOperation(const eDeviceTreeOperation &operation, const QString &key,
                                   const QVariant &value);

protected:
    PluginInterface(std::unique_ptr<PluginInterfacePrivate> state, QWidget *parent);

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    friend class PluginInterfacePrivate;
    std::unique_ptr<PluginInterfacePrivate> d;
};
