// The requests of position mode to its module: live reads, settings, and moves.

#include "PositionModeTool.h"

#include "AxisPanel.h"

#include "FieldEditor.h"
#include "QVXLModuleInterface.h"
#include "RegisterNumber.h"
#include "ToolRequests.h"
#include "XmlValueRegister.h"

#include <QTimerEvent>

namespace {

constexpr int pollPeriodMs = 100;

// What RAMPMODE does: 0 lets each axis position on its own, a value that stands for no mode of
// moving halts both.
constexpr int independentMode = 0;
constexpr int holdMode = 1;

int decoded(XmlValueRegister *reg, int value)
{
    return static_cast<int>(tools::number(tools::formatOf(reg), value));
}

} // namespace

void PositionModeTool::showPlugin()
{
    if (!panel || !module())
        return;
    // What happened while the tool was hidden may have changed any of them.
    for (Value &setting : settings)
        setting.value.reset();
    poll();
    pollTimer.start(pollPeriodMs, this);
}

void PositionModeTool::hidePlugin()
{
    pollTimer.stop();
}

void PositionModeTool::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == pollTimer.timerId())
        poll();
    else
        ToolsInterface::timerEvent(event);
}

bool PositionModeTool::read(Value *asked)
{
    const auto answer = tools::readRepeatedly(this, asked->reg);
    if (answer)
        asked->value = decoded(asked->reg, *answer);
    return answer.has_value();
}

/// A link that gives no answer may block for long, so the first failure ends the tick.
void PositionModeTool::poll()
{
    if (pollMotion())
        readUnknown();
    updatePlot();
}

bool PositionModeTool::pollMotion()
{
    const bool isAnswering = read(&position) && read(&velocity);
    showMotion(isAnswering);
    if (isAnswering && (*velocity.value == 0 || !restPosition))
        restPosition = *position.value;
    if (isAnswering == isSilent)
        report(isAnswering ? QString() : QStringLiteral("The module gives no answer."));
    isSilent = !isAnswering;
    return isAnswering;
}

void PositionModeTool::readUnknown()
{
    // The target shown is the user's from then on.
    if (target.reg && !target.value) {
        if (!read(&target))
            return;
        showTarget();
    }
    for (std::size_t i = 0; i < rampSettingCount; ++i) {
        if (!settings[i].reg || settings[i].value)
            continue;
        if (!read(&settings[i]))
            return;
        showSetting(i);
    }
}

void PositionModeTool::takeWrite(unsigned int address, int value, unsigned char writtenFor)
{
    if (!tools::isOwnChip(this, writtenFor))
        return;
    if (target.reg && target.reg->address() == address && !isStopping) {
        target.value = decoded(target.reg, value);
        showTarget();
        updatePlot();
    }
    for (std::size_t i = 0; i < rampSettingCount; ++i) {
        if (!settings[i].reg || settings[i].reg->address() != address)
            continue;
        settings[i].value = decoded(settings[i].reg, value);
        showSetting(i);
        updatePlot();
    }
}

void PositionModeTool::writeSetting(std::size_t index, int value)
{
    XmlValueRegister *const reg = settings[index].reg;
    const QString name = reg ? reg->name() : rampSettingName(static_cast<int>(index));
    const QPointer<PositionModeTool> self(this);
    const bool isWritten = tools::write(this, reg, value);
    if (!self)
        return;
    report(isWritten ? QString() : QStringLiteral("%1: no answer, not written.").arg(name));
    // Shows what the chip holds again.
    if (!isWritten)
        showSetting(index);
}

/// Ends with the first write that fails. False then, and when a listener has deleted the tool.
bool PositionModeTool::writeAll(std::initializer_list<RegisterWrite> writes)
{
    const QPointer<PositionModeTool> self(this);
    for (const RegisterWrite &request : writes) {
        if (!tools::write(this, request.first, request.second) || !self)
            return false;
    }
    return true;
}

void PositionModeTool::go()
{
    panel->target->interpretText();
    const QPointer<PositionModeTool> self(this);
    const bool isOnItsWay =
        writeAll({{rampMode.reg, independentMode}, {target.reg, panel->target->value()}});
    if (self)
        report(isOnItsWay ? QString() : QStringLiteral("No answer: the move is not started."));
}

/// The axis brakes by its ramp and comes back to where it was when it was asked to stop. The target
/// that the user has entered stays on display for the next move.
void PositionModeTool::stop()
{
    if (!read(&position)) {
        hold();
        return;
    }
    const QPointer<PositionModeTool> self(this);
    isStopping = true;
    const bool isStopped =
        writeAll({{rampMode.reg, independentMode}, {target.reg, *position.value}});
    if (!self)
        return;
    isStopping = false;
    report(isStopped ? QString() : QStringLiteral("No answer: the axis is not stopped!"));
}

/// Without a position to stay at, both axes are halted.
void PositionModeTool::hold()
{
    const QPointer<PositionModeTool> self(this);
    const bool isHeld = writeAll({{rampMode.reg, holdMode}});
    if (self)
        report(isHeld ? QStringLiteral("The actual position is not known: both axes are held.")
                      : QStringLiteral("No answer: the axis is not stopped!"));
}
