#include "DeviceTree.h"

#include "DebugCategories.h"
#include "HostRegistry.h"
#include "PluginHandler.h"

DeviceTree::DeviceTree(QObject *parent)
    : QObject(parent)
{
    const auto plugins = PluginHandler::instance(false)->plugins();
    for (PluginInterface *plugin : plugins)
        watch(plugin);
    connect(HostRegistry::instance(), &HostRegistry::pluginAdded, this, &DeviceTree::watch);
}

void DeviceTree::watch(PluginInterface *plugin)
{
    connect(plugin, &PluginInterface::signalDeviceTreeOperation, this, &DeviceTree::carryOut,
            Qt::UniqueConnection);
}

void DeviceTree::carryOut(const eDeviceTreeOperation &operation, const QString &key)
{
    const auto *const asking = qobject_cast<PluginInterface *>(sender());
    const bool isRegistered = asking && !asking->key().isEmpty();
    if (!isRegistered || operation != eDeviceTreeOpenPlugin)
        return;
    if (PluginInterface *const plugin = HostRegistry::plugin(key))
        emit openRequested(plugin);
    else
        qCDebug(debLowLevel) << Q_FUNC_INFO << "no plug-in with the key" << key;
}
