#pragma once

#include <QTreeWidget>

class PluginInterface;
class ToolsInterface;

namespace workbench {

/// Lists modules and, below each, its tools. Entries of tools that are on screen are bold. Holds
/// keys, no plug-ins; an entry goes when its plug-in leaves the host's registry.
class DeviceTreeView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit DeviceTreeView(QWidget *parent = nullptr);

    /// Adds a registered tool, and its module when that is not listed yet.
    void addTool(ToolsInterface *tool);

    void markOnScreen(const QString &key, bool isOnScreen);

    /// The entry of a plug-in; null for an unknown key.
    QTreeWidgetItem *item(const QString &key) const;

signals:
    /// Double-click or Enter on a tool.
    void openRequested(const QString &key);

private:
    QTreeWidgetItem *moduleItem(PluginInterface *module);
    void removeEntry(const QString &key);
};

/// How a tool is called in the tree and on its window: its title, with the motor where a module has
/// one such tool for each motor.
QString displayName(ToolsInterface *tool);

} // namespace workbench
