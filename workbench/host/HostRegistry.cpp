#include "HostRegistry.h"

#include "PluginInterface_p.h"
#include "QVXLModuleInterface.h"
#include "ToolsInterface.h"

#include <QPointer>

HostRegistry *HostRegistry::instance()
{
    // Never deleted, as the registry itself.
    static auto *const registry = new HostRegistry;
    return registry;
}

void HostRegistry::add(PluginInterface *plugin, const QString &key)
{
    if (!plugin || key.isEmpty() || plugin->key() == key)
        return;
    remove(plugin);
    remove(HostRegistry::plugin(key));
    PluginHandlerPrivate::entries().insert(key, plugin);
    PluginInterfacePrivate::of(plugin)->key = key;
    emit instance()->pluginAdded(plugin);
}

void HostRegistry::remove(PluginInterface *plugin)
{
    if (!plugin || plugin->key().isEmpty())
        return;
    const QString key = plugin->key();
    PluginHandlerPrivate::entries().remove(key);
    PluginInterfacePrivate::of(plugin)->key.clear();
    emit instance()->pluginRemoved(key);
}

PluginInterface *HostRegistry::plugin(const QString &key)
{
    return PluginHandlerPrivate::entries().value(key);
}

ToolsInterface *HostRegistry::asTool(QObject *object)
{
    return static_cast<ToolsInterface *>(ToolsInterface::staticMetaObject.cast(object));
}

void HostRegistry::announceVisibility(PluginInterface *plugin, bool isVisible)
{
    if (!plugin)
        return;
    PluginInterfacePrivate::of(plugin)->onScreen = isVisible;
    auto *const tool = asTool(plugin);
    const QString moduleKey = tool && tool->module() ? tool->module()->key() : QString();
    if (moduleKey.isEmpty())
        return;
    const QString key = plugin->key();
    QList<QPointer<ToolsInterface>> siblings;
    const auto plugins = PluginHandlerPrivate::entries();
    for (auto entry = plugins.cbegin(); entry != plugins.cend(); ++entry) {
        if (entry.key().startsWith(moduleKey) && entry.value() != plugin)
            siblings.append(asTool(entry.value()));
    }
    for (const QPointer<ToolsInterface> &sibling : qAsConst(siblings)) {
        if (sibling)
            sibling->siblingIsVisible(key, isVisible);
    }
}

bool HostRegistry::isOnScreen(const PluginInterface *plugin)
{
    return plugin && PluginInterfacePrivate::of(plugin)->onScreen;
}
