#pragma once

#include "ModuleLink.h"

#include <QPoint>
#include <QtGlobal>

#include <functional>

namespace workbench {

class Clock;

/// Both positions at an instant.
struct Sample
{
    qint64 timeNs = 0; ///< on the clock that the tap was given
    QPoint position;   ///< position units, x is axis 0
};

/// A link that passes every request on to another and reports the positions that come back.
class SampleTap : public ModuleLink
{
public:
    /// Refers to both, owns neither.
    SampleTap(ModuleLink &next, const Clock &clock);

    /// Called for each answered request for both positions, before the asker gets the answer.
    std::function<void(const Sample &)> onSample;

    /// All requests that were not answered.
    quint64 failedCount() const { return failed; }

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    bool counted(bool isAnswered);

    ModuleLink &next;
    const Clock &clock;
    quint64 failed = 0;
};

} // namespace workbench
