#include "DeviceTreeView.h"

#include "ToolFactory.h"

#include "HostRegistry.h"
#include "QVXLModuleInterface.h"
#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QStyle>
#include <QTreeWidgetItemIterator>

namespace workbench {

namespace {

constexpr int keyRole = Qt::UserRole;

} // namespace

DeviceTreeView::DeviceTreeView(QWidget *parent)
    : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("deviceTree"));
    setHeaderHidden(true);
    setColumnCount(1);
    setExpandsOnDoubleClick(false);
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem *activated) {
        if (activated->parent())
            emit openRequested(activated->data(0, keyRole).toString());
    });
    connect(HostRegistry::instance(), &HostRegistry::pluginRemoved, this,
            &DeviceTreeView::removeEntry);
}

void DeviceTreeView::addTool(ToolsInterface *tool)
{
    auto *const entry = new QTreeWidgetItem({displayName(tool)});
    entry->setData(0, keyRole, tool->key());
    entry->setIcon(0, QIcon(ToolDetails::of(tool).iconPath));
    entry->setToolTip(0, tr("Double-click or press Enter to open\n%1").arg(tool->key()));
    if (QVXLModuleInterface *const module = tool->module())
        moduleItem(module)->addChild(entry);
    else
        addTopLevelItem(entry);
    expandAll();
}

void DeviceTreeView::markOnScreen(const QString &key, bool isOnScreen)
{
    QTreeWidgetItem *const entry = item(key);
    if (!entry)
        return;
    QFont font = entry->font(0);
    font.setBold(isOnScreen);
    entry->setFont(0, font);
}

QTreeWidgetItem *DeviceTreeView::item(const QString &key) const
{
    for (QTreeWidgetItemIterator it(const_cast<DeviceTreeView *>(this)); *it; ++it) {
        if ((*it)->data(0, keyRole).toString() == key)
            return *it;
    }
    return nullptr;
}

QTreeWidgetItem *DeviceTreeView::moduleItem(PluginInterface *module)
{
    if (QTreeWidgetItem *const known = item(module->key()))
        return known;
    auto *const entry = new QTreeWidgetItem(this, {module->name()});
    entry->setData(0, keyRole, module->key());
    entry->setIcon(0, style()->standardIcon(QStyle::SP_DriveHDIcon));
    entry->setToolTip(0, tr("Simulated module\n%1").arg(module->key()));
    return entry;
}

void DeviceTreeView::removeEntry(const QString &key)
{
    delete item(key);
}

QString displayName(ToolsInterface *tool)
{
    return tool->toolsName(motorsFor(ToolDetails::of(tool).type).size() > 1);
}

} // namespace workbench
