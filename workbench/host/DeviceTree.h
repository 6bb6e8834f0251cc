#pragma once

#include "PluginInterface.h"

#include <QObject>

/// Listens to the device-tree operations of every registered plug-in, those that are registered
/// later included. GUI thread.
class DeviceTree : public QObject
{
    Q_OBJECT

public:
    explicit DeviceTree(QObject *parent = nullptr);

signals:
    /// A registered plug-in is to be opened.
    void openRequested(PluginInterface *plugin);

private:
    void watch(PluginInterface *plugin);
    void carryOut(const eDeviceTreeOperation &operation, const QString &key);
};
