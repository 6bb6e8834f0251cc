#include "PositionModeTool.h"

#include "AxisPanel.h"
#include "ProfilePlot.h"

#include "ChipInfo.h"
#include "FieldEditor.h"
#include "HostLocale.h"
#include "QVXLModuleInterface.h"
#include "ToolRequests.h"
#include "XmlProductIC.h"
#include "XmlValueRegister.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace {

const auto className = QStringLiteral("PositionModeTool");
const auto toolIcon = QStringLiteral(":/Software-Icons/Amp");
const auto title = QStringLiteral("Position mode");

} // namespace

PositionModeTool::PositionModeTool()
    : ToolsInterface(QStringLiteral("undefined"), className, ToolsType::PositionMode, 0, nullptr,
                     toolIcon, nullptr)
{
}

PositionModeTool::PositionModeTool(const QString &name, unsigned char motor,
                                   QVXLModuleInterface *module)
    : ToolsInterface(name, className, ToolsType::PositionMode, motor, module, toolIcon, nullptr)
{
    setToolsName(title);
    setWindowTitle(toolsName(true));
    setLocale(curLocale);
    findRegisters();
    buildPanel();
    connectPanel();
    followModule();
    showMotion(false);
    updatePlot();
}

QString PositionModeTool::version()
{
    return QStringLiteral("1.0.0 - position mode");
}

ToolsInterface *PositionModeTool::clone(QString name, unsigned char motor,
                                        QVXLModuleInterface *module)
{
    return new PositionModeTool(name, motor, module);
}

void PositionModeTool::findRegisters()
{
    XmlProductIC *const chip = tools::chipOf(this);
    if (!chip)
        return;
    const QString prefix = QStringLiteral("M%1_").arg(motorNumber());
    rampMode.reg = chip->getRegisterByName(QStringLiteral("RAMPMODE"), true);
    position.reg = chip->getRegisterByName(prefix + QStringLiteral("XACTUAL"), true);
    velocity.reg = chip->getRegisterByName(prefix + QStringLiteral("VACTUAL"), true);
    target.reg = chip->getRegisterByName(prefix + QStringLiteral("XTARGET"), true);
    for (std::size_t i = 0; i < rampSettingCount; ++i)
        settings[i].reg =
            chip->getRegisterByName(prefix + rampSettingName(static_cast<int>(i)), true);
}

void PositionModeTool::buildPanel()
{
    AxisRegisters registers;
    registers.target = target.reg;
    for (std::size_t i = 0; i < rampSettingCount; ++i)
        registers.settings[i] = settings[i].reg;
    panel = new AxisPanel(registers, this);
    panel->go->setEnabled(rampMode.reg && target.reg);
    panel->stop->setEnabled(rampMode.reg);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(panel);
}

void PositionModeTool::connectPanel()
{
    for (std::size_t i = 0; i < rampSettingCount; ++i)
        panel->settings[i]->onEdited = [this, i](int value) { writeSetting(i, value); };
    panel->target->onEdited = [this](int) { updatePlot(); };
    connect(panel->go, &QPushButton::clicked, this, &PositionModeTool::go);
    connect(panel->stop, &QPushButton::clicked, this, &PositionModeTool::stop);
}

void PositionModeTool::followModule()
{
    if (!module())
        return;
    connect(module(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this](unsigned short address, int value, int, unsigned char writtenFor) {
                takeWrite(address, value, writtenFor);
            });
    connect(module(), &QObject::destroyed, this, &PositionModeTool::handleModuleGone);
}

void PositionModeTool::handleModuleGone()
{
    pollTimer.stop();
    restPosition.reset();
    showMotion(false);
    report(QStringLiteral("The module is gone."));
    updatePlot();
}

void PositionModeTool::report(const QString &text)
{
    panel->showStatus(text);
}

void PositionModeTool::showMotion(bool isCurrent)
{
    const auto text = [this](const Value &shown) {
        if (!shown.value)
            return QStringLiteral("–");
        return locale().toString(*shown.value) + unitSuffix(shown.reg);
    };
    panel->showPosition(text(position), isCurrent);
    panel->showVelocity(text(velocity), isCurrent);
}

void PositionModeTool::showSetting(std::size_t index)
{
    const Value &setting = settings[index];
    if (!setting.value)
        return;
    panel->settings[index]->setEnabled(true);
    panel->settings[index]->showValue(*setting.value);
}

void PositionModeTool::showTarget()
{
    if (target.value)
        panel->target->showValue(*target.value);
}

void PositionModeTool::updatePlot()
{
    const QString missing = missingText();
    if (!missing.isEmpty()) {
        panel->plot->showMessage(missing);
        return;
    }
    RampSettings ramp{};
    for (std::size_t i = 0; i < rampSettingCount; ++i)
        ramp[i] = settings[i].value.value_or(0);
    const double distance = double(panel->target->value()) - *restPosition;
    if (distance == 0) {
        panel->plot->showMessage(QStringLiteral("The axis is at its target."));
        return;
    }
    QVector<VelocityMark> marks;
    for (const std::size_t i : {VMax, V2, V1}) {
        if (ramp[i] > 0)
            marks.append({rampSettingName(static_cast<int>(i)),
                          distance < 0 ? -double(ramp[i]) : double(ramp[i])});
    }
    panel->plot->showProfile(velocityProfile(ramp, distance), marks);
}

/// Why there is no profile; empty when all that it needs is known and set.
QString PositionModeTool::missingText() const
{
    RampSettings ramp{};
    QStringList unknown;
    for (std::size_t i = 0; i < rampSettingCount; ++i) {
        if (!settings[i].reg)
            unknown << rampSettingName(static_cast<int>(i));
        ramp[i] = settings[i].value.value_or(0);
    }
    if (!unknown.isEmpty())
        return QStringLiteral("No profile: the chip has no %1.")
            .arg(unknown.join(QStringLiteral(", ")));
    for (std::size_t i = 0; i < rampSettingCount; ++i) {
        if (!settings[i].value)
            unknown << rampSettingName(static_cast<int>(i));
    }
    if (!unknown.isEmpty())
        return QStringLiteral("No profile: the module has not told %1 yet.")
            .arg(unknown.join(QStringLiteral(", ")));
    const QStringList zero = missingSettings(ramp);
    if (!zero.isEmpty())
        return QStringLiteral("No profile: these settings must be above zero: %1.")
            .arg(zero.join(QStringLiteral(", ")));
    return restPosition ? QString()
                        : QStringLiteral("No profile: the actual position is not known.");
}
