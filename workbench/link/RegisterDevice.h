#pragma once

#include <QtGlobal>

namespace workbench {

/// What a link leads to: registers and two axes, as they are at the time last given.
class RegisterDevice
{
public:
    virtual ~RegisterDevice() = default;

    /// On the clock of the link; a time before the one last given is ignored.
    virtual void advanceTo(qint64 ns) = 0;

    /// False, with `value` left alone, for what cannot be read.
    virtual bool read(unsigned int address, int *value) const = 0;
    /// False, with nothing changed, for what cannot be written.
    virtual bool write(unsigned int address, int value) = 0;

    /// The position of axis 0 or 1 in position units, within minimumPosition to maximumPosition.
    virtual int position(int axis) const = 0;
};

} // namespace workbench
