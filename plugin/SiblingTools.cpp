#include "SynchronisedDriveTool.h"

#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "DebugCategories.h"
#include "PluginHandler.h"
#include "QVXLModuleInterface.h"

#include <QDebug>
#include <QTimer>

namespace {

constexpr int toolsPluginType = 3;
constexpr auto openPlugin = static_cast<eDeviceTreeOperation>(1);

/// Time for the register browser to open before it is sent the list.
constexpr int exportDelayMs = 100;

QString textProperty(const QObject *object, const char *name)
{
    return object ? object->property(name).toString() : QString();
}

} // namespace

/// Looks for the module's register browser and position-mode tools among the loaded plug-ins, and
/// enables the button of each that is there. Of several for one role the last one met wins.
void SynchronisedDriveTool::initExternTools()
{
    if (!ui)
        return;
    ui->btnShowRegister->setEnabled(false);
    ui->btnShowPosition->setEnabled(false);
    const PluginHandler *registry = module() ? PluginHandler::instance(false) : nullptr;
    if (!registry)
        return;
    const QString moduleKey = module()->key();
    const QHash<QString, PluginInterface *> plugins = registry->plugins();
    for (auto entry = plugins.cbegin(); entry != plugins.cend(); ++entry) {
        PluginInterface *plugin = entry.value();
        if (!entry.key().startsWith(moduleKey) || !plugin ||
            plugin->pluginType() != toolsPluginType)
            continue;
        // The cast goes by the interface's identifier, as tools come from other modules.
        if (auto *sibling = qobject_cast<ToolsInterface *>(plugin))
            linkSibling(sibling, entry.key());
    }
}

void SynchronisedDriveTool::linkSibling(ToolsInterface *sibling, const QString &key)
{
    const auto motor = static_cast<unsigned char>(sibling->motorNumber() & 0xFF);
    const QString name = sibling->toolsName(false);
    qCDebug(debLowLevel) << "void SynchronisedDriveTool::initExternTools()" << int(motor) << name
                         << sibling->parentWidget() << key;
    if (name.startsWith(textProperty(ui->btnShowRegister, drive::property::ExToolName))) {
        ui->btnShowRegister->setProperty(drive::property::ExToolKey0, key);
        ui->btnShowRegister->setEnabled(true);
    } else if (name.startsWith(textProperty(ui->btnShowPosition, drive::property::ExToolName))) {
        ui->btnShowPosition->setProperty(
            motor != 0 ? drive::property::ExToolKey1 : drive::property::ExToolKey0, key);
        ui->btnShowPosition->setEnabled(true);
    }
}

/// Visibility of other tools is not tracked.
void SynchronisedDriveTool::siblingIsVisible(const QString &key, bool isVisible)
{
    if (!ui)
        return;
    qCDebug(debLowLevel)
        << isVisible << "virtual void SynchronisedDriveTool::siblingIsVisible(const QString&, bool)"
        << key << ui->btnShowRegister->property(drive::property::ExToolKey0);
}

// The host is asked with an empty key too, when a sibling was never found.

void SynchronisedDriveTool::on_btnShowRegister_clicked()
{
    if (!ui)
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    emit signalDeviceTreeOperation(openPlugin, textProperty(sender(), drive::property::ExToolKey0),
                                   QVariant());
    if (!self)
        return;
    QTimer::singleShot(exportDelayMs, Qt::PreciseTimer, this, [this] {
        const QVariant list = ui->btnShowRegister->property(drive::property::RegisterList);
        exportValue(&ExportTypes::RegisterList, list.toList());
    });
}

void SynchronisedDriveTool::on_btnShowPosition_clicked()
{
    if (!ui)
        return;
    const QPointer<SynchronisedDriveTool> self(this);
    const QPointer<QObject> button = sender();
    for (const char *key : {drive::property::ExToolKey0, drive::property::ExToolKey1}) {
        emit signalDeviceTreeOperation(openPlugin, textProperty(button, key), QVariant());
        if (!self)
            return;
    }
}
