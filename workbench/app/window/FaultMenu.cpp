#include "FaultMenu.h"

#include "FaultControl.h"

#include <QLabel>
#include <QSignalBlocker>
#include <QStringList>

Q_DECLARE_METATYPE(workbench::Fault)

namespace workbench {

FaultMenu::FaultMenu(FaultControl &faultControl, QWidget *parent)
    : QMenu(tr("F&aults"), parent)
    , control(faultControl)
{
    setObjectName(QStringLiteral("faultMenu"));
    setToolTipsVisible(true);
    allOff = addAction(tr("All &Off"), &control, &FaultControl::switchOffAll);
    allOff->setObjectName(QStringLiteral("allFaultsOff"));
    addSeparator();
    for (int index = 0; index < faultTable().size(); ++index)
        addFault(index);
    connect(&control, &FaultControl::changed, this, &FaultMenu::showActive);
    showActive();
}

void FaultMenu::addFault(int index)
{
    const FaultInfo &info = faultTable().at(index);
    const Fault preset = presetFault(info.kind);
    QAction *const action = addAction(faultText(preset));
    action->setObjectName(info.name);
    action->setCheckable(true);
    action->setToolTip(info.description);
    action->setStatusTip(info.description);
    action->setData(QVariant::fromValue(preset));
    entries.append(action);
    connect(action, &QAction::toggled, this, [this, action](bool isOn) {
        const auto fault = action->data().value<Fault>();
        if (isOn)
            control.switchOn(fault);
        else
            control.switchOff(fault.kind);
    });
}

void FaultMenu::showActive()
{
    const auto active = control.active();
    for (QAction *const action : qAsConst(entries)) {
        const FaultKind kind = action->data().value<Fault>().kind;
        const auto isIt = [kind](const Fault &fault) { return fault.kind == kind; };
        const auto found = std::find_if(active.cbegin(), active.cend(), isIt);
        const QSignalBlocker blocker(action);
        action->setChecked(found != active.cend());
        if (found != active.cend()) {
            action->setData(QVariant::fromValue(*found));
            action->setText(faultText(*found));
        }
    }
    allOff->setEnabled(!active.isEmpty());
}

QLabel *makeFaultLabel(FaultControl &control)
{
    auto *const label = new QLabel;
    label->setObjectName(QStringLiteral("faultsLabel"));
    const auto update = [&control, label] {
        QStringList names;
        const auto active = control.active();
        for (const Fault &fault : active)
            names.append(faultText(fault));
        label->setText(FaultMenu::tr("Faults: %1").arg(names.join(QStringLiteral(", "))));
        label->setVisible(!names.isEmpty());
    };
    QObject::connect(&control, &FaultControl::changed, label, update);
    update();
    return label;
}

} // namespace workbench
