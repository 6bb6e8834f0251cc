#include "AxisPanel.h"

#include "ProfilePlot.h"

#include "ChipInfo.h"
#include "FieldEditor.h"
#include "RegisterNumber.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include <limits>

namespace {

int toInt(qint64 value)
{
    return static_cast<int>(
        qBound<qint64>(std::numeric_limits<int>::min(), value, std::numeric_limits<int>::max()));
}

NumberEditor *makeEditor(const XmlValueRegister *reg)
{
    const tools::NumberFormat format = tools::formatOf(reg);
    auto *const editor = new NumberEditor({toInt(format.min), toInt(format.max)});
    editor->setSuffix(unitSuffix(reg));
    editor->setAlignment(Qt::AlignRight);
    editor->setToolTip(QStringLiteral("%1\nAllowed: %2")
                           .arg(ChipInfo::of(reg).description, tools::rangeText(format)));
    return editor;
}

QLabel *makeValueLabel(const QString &objectName)
{
    auto *const label = new QLabel;
    label->setObjectName(objectName);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

void showIn(QLabel *label, const QString &text, bool isCurrent)
{
    label->setText(text);
    label->setForegroundRole(isCurrent ? QPalette::WindowText : QPalette::PlaceholderText);
}

} // namespace

QString unitSuffix(const XmlValueRegister *reg)
{
    const QString unit = ChipInfo::of(reg).unit;
    return unit.isEmpty() ? QString() : QLatin1Char(' ') + unit;
}

AxisPanel::AxisPanel(const AxisRegisters &registers, QWidget *parent)
    : QWidget(parent)
    , plot(new ProfilePlot)
    , status(new QLabel)
{
    plot->setObjectName(QStringLiteral("profilePlot"));
    const QString unit = ChipInfo::of(registers.settings[VMax]).unit;
    plot->setVelocityUnit(unit.isEmpty() ? QStringLiteral("units/s") : unit);
    status->setObjectName(QStringLiteral("lbStatus"));
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A long message must not make the whole tool wider.
    status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto *const grid = new QGridLayout(this);
    grid->addWidget(makeSettingsColumn(registers), 0, 0);
    grid->addWidget(plot, 0, 1);
    grid->addWidget(status, 1, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(0, 1);
}

void AxisPanel::showPosition(const QString &text, bool isCurrent)
{
    showIn(position, text, isCurrent);
}

void AxisPanel::showVelocity(const QString &text, bool isCurrent)
{
    showIn(velocity, text, isCurrent);
}

void AxisPanel::showStatus(const QString &text)
{
    status->setText(text);
    status->setToolTip(text);
}

QWidget *AxisPanel::makeSettingsColumn(const AxisRegisters &registers)
{
    auto *const column = new QWidget;
    auto *const rows = new QVBoxLayout(column);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(makeActualBox());
    rows->addWidget(makeSettingsBox(registers));
    rows->addWidget(makeMoveBox(registers));
    rows->addStretch();
    return column;
}

QWidget *AxisPanel::makeActualBox()
{
    auto *const box = new QGroupBox(QStringLiteral("Actual"));
    position = makeValueLabel(QStringLiteral("lbPosition"));
    velocity = makeValueLabel(QStringLiteral("lbVelocity"));
    auto *const form = new QFormLayout(box);
    form->addRow(QStringLiteral("Position"), position);
    form->addRow(QStringLiteral("Velocity"), velocity);
    return box;
}

QWidget *AxisPanel::makeSettingsBox(const AxisRegisters &registers)
{
    auto *const box = new QGroupBox(QStringLiteral("Ramp settings"));
    auto *const form = new QFormLayout(box);
    constexpr int rowSpacing = 3;
    form->setVerticalSpacing(rowSpacing);
    for (std::size_t i = 0; i < rampSettingCount; ++i) {
        const XmlValueRegister *const reg = registers.settings[i];
        settings[i] = makeEditor(reg);
        settings[i]->setObjectName(ChipInfo::of(reg).name);
        // Until the module has told the value.
        settings[i]->setEnabled(false);
        form->addRow(rampSettingName(static_cast<int>(i)), settings[i]);
    }
    return box;
}

QWidget *AxisPanel::makeMoveBox(const AxisRegisters &registers)
{
    auto *const box = new QGroupBox(QStringLiteral("Move"));
    target = makeEditor(registers.target);
    target->setObjectName(QStringLiteral("spTarget"));
    go = new QPushButton(QIcon(QStringLiteral(":/Player/rightBlack")), QStringLiteral("Go"));
    go->setObjectName(QStringLiteral("pbGo"));
    go->setToolTip(QStringLiteral("Moves this axis to the target"));
    stop = new QPushButton(QIcon(QStringLiteral(":/Player/StopBlack")), QStringLiteral("Stop"));
    stop->setObjectName(QStringLiteral("pbStop"));
    stop->setToolTip(QStringLiteral("Brakes this axis and holds it where it is now"));
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(go);
    buttons->addWidget(stop);
    auto *const form = new QFormLayout(box);
    form->addRow(QStringLiteral("Target"), target);
    form->addRow(buttons);
    return box;
}
