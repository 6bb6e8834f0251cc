// The browser's requests to its module: live reads, spread over time so that the user interface
// never waits for more than a few of them, and writes.

#include "RegisterBrowserTool.h"

#include "FieldTableModel.h"
#include "RegisterBrowserPanel.h"
#include "RegisterFilter.h"
#include "RegisterTableModel.h"
#include "ToolRequests.h"

#include "FieldCoding.h"
#include "QVXLModuleInterface.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QTimerEvent>

#include <algorithm>

namespace {

/// A request blocks for about half a millisecond.
constexpr int maximumReadsPerTick = 8;
constexpr int minimumIntervalMs = 20;

int ticksPerRound(int registersShown)
{
    return qMax(1, (registersShown + maximumReadsPerTick - 1) / maximumReadsPerTick);
}

} // namespace

void RegisterBrowserTool::showPlugin()
{
    if (!panel)
        return;
    isOnScreen = true;
    restartPolling();
    if (pollTimer.isActive())
        readSome();
}

void RegisterBrowserTool::hidePlugin()
{
    isOnScreen = false;
    pollTimer.stop();
}

void RegisterBrowserTool::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == pollTimer.timerId())
        readSome();
    else
        ToolsInterface::timerEvent(event);
}

void RegisterBrowserTool::restartPolling()
{
    const int count = rowsToRead().size();
    if (isOnScreen && module() && panel->live->isChecked() && count > 0)
        pollTimer.start(pollIntervalMs(count), this);
    else
        pollTimer.stop();
}

/// So that each register is read at the rate that is set, as far as the shortest interval lets it.
int RegisterBrowserTool::pollIntervalMs(int registersShown) const
{
    constexpr double msPerSecond = 1000;
    const double roundMs = msPerSecond / panel->rate->value();
    return qMax(minimumIntervalMs, static_cast<int>(roundMs / ticksPerRound(registersShown)));
}

QVector<int> RegisterBrowserTool::rowsToRead() const
{
    QVector<int> rows = filter->sourceRows();
    const auto isUnreadable = [this](int row) { return !registers->canBeRead(row); };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isUnreadable), rows.end());
    return rows;
}

/// Goes on behind the register read last. A link that gives no answer may block for long, so the
/// first failure ends the tick.
void RegisterBrowserTool::readSome()
{
    const QVector<int> rows = rowsToRead();
    const int ticks = ticksPerRound(rows.size());
    const int count = (rows.size() + ticks - 1) / ticks;
    auto next = std::upper_bound(rows.cbegin(), rows.cend(), lastRowRead);
    for (int i = 0; i < count; ++i) {
        if (next == rows.cend())
            next = rows.cbegin();
        lastRowRead = *next++;
        if (!readRow(lastRowRead))
            break;
    }
}

bool RegisterBrowserTool::readRow(int row)
{
    const auto value = tools::readRepeatedly(this, registers->registerAt(row));
    if (value)
        registers->setValue(row, *value);
    else
        registers->setUnanswered(row);
    return value.has_value();
}

void RegisterBrowserTool::takeWrite(unsigned int address, int value, unsigned char writtenFor)
{
    const int row = registers->rowOf(address);
    if (row >= 0 && tools::isOwnChip(this, writtenFor))
        registers->setValue(row, value);
}

void RegisterBrowserTool::writeRegister(unsigned int address, int value)
{
    const int row = registers->rowOf(address);
    XmlValueRegister *const reg = row < 0 ? nullptr : registers->registerAt(row);
    const QString name = reg ? reg->name() : QStringLiteral("The register");
    const QPointer<RegisterBrowserTool> self(this);
    const bool isWritten = tools::write(this, reg, value);
    if (!self)
        return;
    panel->showStatus(isWritten ? QStringLiteral("%1 is written.").arg(name)
                                : QStringLiteral("%1: no answer, not written.").arg(name));
}

void RegisterBrowserTool::writeField(XmlValueRegisterField *field, int value)
{
    const FieldInfo info = ChipInfo::of(field);
    const QPointer<XmlValueRegisterField> guard(field);
    const QPointer<RegisterBrowserTool> self(this);
    QVXLModuleInterface *const target = module();
    int readBack = value;
    const bool isWritten =
        target && target->writeAndReadChannelField(field, tools::motorOf(this), value, &readBack);
    if (!self)
        return;
    const QString name = field ? info.identifier : QStringLiteral("The field");
    if (!isWritten)
        panel->showStatus(QStringLiteral("%1: no answer.").arg(name));
    else
        panel->showStatus(QStringLiteral("%1 is written and reads %2.").arg(name).arg(readBack));
    if (isWritten && guard)
        takeReadBack(guard, readBack);
}

/// A chip may keep less of a field than what was written.
void RegisterBrowserTool::takeReadBack(XmlValueRegisterField *field, int readBack)
{
    XmlValueRegister *const reg = field->getRegister();
    const int row = reg ? registers->rowOf(reg->address()) : -1;
    if (row < 0 || !registers->valueAt(row))
        return;
    registers->setValue(
        row, FieldCoding::insert(ChipInfo::of(field), *registers->valueAt(row), readBack));
}
