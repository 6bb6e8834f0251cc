#include "SynchronisedDriveTool.h"

#include "FlightPathDialog.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "DebugCategories.h"
#include "HostLocale.h"

#include <QAction>
#include <QDebug>
#include <QMenu>

#include <optional>

namespace {

void logAction(const QString &text)
{
    qCDebug(debLowLevel) << "SynchronisedDriveTool::initFlightPath()::<lambda()>" << text;
}

} // namespace

void SynchronisedDriveTool::initFlightPath()
{
    // A square with both diagonals and a roof, drawn in one go, and an excursion below it.
    flightPath = {{0, 0},      {0, 1025}, {1025, 1025}, {0, 0},       {1025, 0},    {1025, 1025},
                  {512, 1800}, {0, 1025}, {1025, 0},    {1125, -200}, {-100, -200}, {0, 0}};
    ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
    if (ui->pbStart->menu())
        return;
    auto *menu = new QMenu(this);
    const auto add = [&](const char *icon, const char *text, void (Tool::*run)(const QAction *)) {
        auto *action = new QAction(QIcon(QLatin1String(icon)), QLatin1String(text), nullptr);
        menu->addAction(action);
        connect(action, &QAction::triggered, this, [this, run, action] { (this->*run)(action); });
        // It has no parent, and goes with the menu at once: the plug-in may be unloaded next.
        connect(menu, &QObject::destroyed, action, [action] { delete action; });
    };
    add(":/Software-Icons/Amp", "Run flight path", &Tool::runFlightPath);
    add(":/Software-Icons/Code-Editor", "Edit flight path", &Tool::editFlightPath);
    ui->pbStart->setMenu(menu);
}

/// The polling cycle drives on from point to point.
void SynchronisedDriveTool::runFlightPath(const QAction *action)
{
    logAction(action->text());
    if (begun.stopsWithoutStart > 0)
        return;
    ++begun.starts;
    if (flightPath.isEmpty())
        initFlightPath();
    ui->pbStart->setProperty(drive::property::RunFlightPath, 0);
    setTargetPosition(flightPath.constFirst(), QPoint(0, 0));
    ui->pbStart->click();
}

void SynchronisedDriveTool::editFlightPath(const QAction *action)
{
    logAction(action->text());
    QLocale::setDefault(curLocale);

    const QPointer<SynchronisedDriveTool> self(this);
    std::optional<QVector<QPointF>> accepted;
    auto *dialog = new FlightPathDialog(flightPath, action, name() + QStringLiteral("/Path"), this);
    // The dialog is gone when exec() returns, and the tool may be too.
    connect(dialog, &QDialog::accepted, dialog,
            [dialog, &accepted] { accepted = dialog->points(); });
    dialog->show();
    dialog->exec();
    if (self && accepted)
        flightPath = *accepted;
}
