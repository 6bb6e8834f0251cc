#pragma once

#include "PluginInterface.h"

#include <QObject>

class ToolsInterface;

/// The host's side of the plug-in registry: what the application does with plug-ins. GUI thread.
class HostRegistry : public QObject
{
    Q_OBJECT

public:
    static HostRegistry *instance();

    /// Registers a plug-in, which is not owned and leaves the registry by itself when it is
    /// deleted. A plug-in that was registered before gets the new key; the plug-in that held the
    /// key before loses it. Nothing happens for a null plug-in or an empty key. The keys of a
    /// module's tools begin with the module's key; let module keys end in a separator so that none
    /// is the beginning of another.
    static void add(PluginInterface *plugin, const QString &key);
    static void remove(PluginInterface *plugin);

    /// The registered plug-in of that key, or null.
    static PluginInterface *plugin(const QString &key);

    /// The object as a tool, or null. Unlike qobject_cast it also knows a tool whose class does not
    /// declare the tools interface.
    static ToolsInterface *asTool(QObject *object);

    /// To be called right after a plug-in's showPlugin() or hidePlugin(): notes it, and tells the
    /// other tools of the same module through siblingIsVisible(). Tools override those two
    /// functions without calling the base, so they cannot tell it themselves.
    static void announceVisibility(PluginInterface *plugin, bool isVisible);

    /// What was announced last; false before.
    static bool isOnScreen(const PluginInterface *plugin);

signals:
    void pluginAdded(PluginInterface *plugin);
    void pluginRemoved(const QString &key);

    /// A tool wants `text` in the status bar for a number of milliseconds; 0 keeps it.
    void statusMessage(const QString &text, int timeoutMs);

private:
    HostRegistry() = default;
};
