#pragma once

#include "PluginHandler.h"
#include "PluginInterface.h"

/// The values of PluginInterface::pluginType() that the host uses.
enum class PluginKind { Module = 1, Tool = 3 };

class PluginInterfacePrivate
{
public:
    PluginInterfacePrivate(const QString &pluginName, PluginKind pluginKind);

    static PluginInterfacePrivate *of(const PluginInterface *plugin) { return plugin->d.get(); }

    QString name;
    QString key;
    PluginKind kind;
    bool onScreen = false;
};

class PluginHandlerPrivate
{
public:
    /// The entries of the one registry.
    static QHash<QString, PluginInterface *> &entries();

    QHash<QString, PluginInterface *> plugins;
};
