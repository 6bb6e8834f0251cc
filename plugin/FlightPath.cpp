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

/// A square with both diagonals and a roof, drawn in one go, and an excursion below it.
const QVector<QPointF> &defaultFlightPath()
{
    static const QVector<QPointF> path{{0, 0},    {0, 1025},    {1025, 1025}, {0, 0},
                                       {1025, 0}, {1025, 1025}, {512, 1800},  {0, 1025},
                                       {1025, 0}, {1125, -200}, {-100, -200}, {0, 0}};
    return path;
}

void logAction(const QString &text)
{
    qCDebug(debLowLevel) << "SynchronisedDriveTool::initFlightPath()::<lambda()>" << text;
}

/// The actions have no parent; they go with the menu, at once: the plug-in may be unloaded next.
QAction *addMenuAction(QMenu *menu, const QString &icon, const QString &text)
{
    auto *action = new QAction(QIcon(icon), text, nullptr);
    menu->addAction(action);
    QObject::connect(menu, &QObject::destroyed, action, [action] { delete action; });
    return action;
}

} // namespace

void SynchronisedDriveTool::initFlightPath()
{
    flightPath = defaultFlightPath();
    ui->pbStart->setProperty(drive::property::RunFlightPath, flightPath.size());
    if (ui->pbStart->menu())
        return;
    auto *menu = new QMenu(this);
    QAction *run = addMenuAction(menu, QStringLiteral(":/Software-Icons/Amp"),
                                 QStringLiteral("Run flight path"));
    connect(run, &QAction::triggered, this, [this, run] { runFlightPath(run); });
    QAction *edit = addMenuAction(menu, QStringLiteral(":/Software-Icons/Code-Editor"),
                                  QStringLiteral("Edit flight path"));
    connect(edit, &QAction::triggered, this, [this, edit] { editFlightPath(edit); });
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
