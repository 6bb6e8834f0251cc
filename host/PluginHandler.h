#pragma once

#include <QHash>
#include <QString>

#include <memory>

class PluginHandlerPrivate;
class PluginInterface;

/// The registry of all plug-ins that are loaded, modules included. GUI thread.
class PluginHandler
{
public:
    /// The one registry. With the flag it is made anew; tools pass false.
    static PluginHandler *instance(bool renew);

    /// A copy of the registry, by key. The plug-ins are not owned by the caller; an entry may be
    /// null.
    QHash<QString, PluginInterface *> plugins() const;

private:
    friend class PluginHandlerPrivate;
    PluginHandler();
    ~PluginHandler();
    std::unique_ptr<PluginHandlerPrivate> d;
};
