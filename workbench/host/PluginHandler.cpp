#include "PluginHandler.h"

#include "HostRegistry.h"
#include "PluginInterface_p.h"

PluginHandler::PluginHandler()
    : d(std::make_unique<PluginHandlerPrivate>())
{
}

PluginHandler::~PluginHandler() = default;

PluginHandler *PluginHandler::instance(bool renew)
{
    // Never deleted: plug-ins with static storage still leave the registry when the process ends.
    static auto *const handler = new PluginHandler;
    if (renew) {
        const auto plugins = handler->plugins();
        for (PluginInterface *plugin : plugins)
            HostRegistry::remove(plugin);
    }
    return handler;
}

QHash<QString, PluginInterface *> PluginHandler::plugins() const
{
    return d->plugins;
}

QHash<QString, PluginInterface *> &PluginHandlerPrivate::entries()
{
    return PluginHandler::instance(false)->d->plugins;
}
