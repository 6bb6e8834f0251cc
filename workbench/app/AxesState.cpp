#include "AxesState.h"

#include "SimulatedModule.h"
#include "TapeLink.h"

namespace workbench {

AxesState::AxesState(SimulatedModule &simulated, const TapeLink *played)
    : module(simulated)
    , tape(played)
{
}

QPoint AxesState::position() const
{
    if (tape)
        return tape->position().value_or(QPoint());
    module.catchUp();
    return {module.chip().position(0), module.chip().position(1)};
}

QPoint AxesState::target() const
{
    if (tape)
        return {tape->target(0).value_or(0), tape->target(1).value_or(0)};
    return {registerValue(QStringLiteral("M0_XTARGET")),
            registerValue(QStringLiteral("M1_XTARGET"))};
}

bool AxesState::areAtRest() const
{
    if (tape)
        return tape->areAtRest();
    module.catchUp();
    return !module.chip().isMoving();
}

int AxesState::registerValue(const QString &name) const
{
    if (!tape)
        return module.registerValue(name).value_or(0);
    const RegisterDescription *const described = module.chip().description().findRegister(name);
    return described ? tape->value(described->address).value_or(0) : 0;
}

} // namespace workbench
