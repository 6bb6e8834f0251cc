#pragma once

#include <QPoint>
#include <QString>

#include <optional>

namespace workbench {

class SimulatedModule;
class TapeLink;

/// What the axes do, as the one says who answers the panel's requests: the simulated chip, or a
/// tape that is played instead. It is found without a request, and without the faults in front of
/// either. GUI thread.
class AxesState
{
public:
    /// Refers to both; null plays no tape.
    AxesState(SimulatedModule &module, const TapeLink *tape);

    /// Position units.
    QPoint position() const;
    QPoint target() const;
    bool areAtRest() const;

    /// 0 for a register that the chip lacks or whose value the tape does not have.
    int registerValue(const QString &name) const;

private:
    SimulatedModule &module;
    const TapeLink *tape;
};

} // namespace workbench
