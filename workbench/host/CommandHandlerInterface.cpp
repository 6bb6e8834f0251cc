#include "CommandHandlerInterface.h"

#include "CommandHandlerInterface_p.h"

CommandHandlerInterface::CommandHandlerInterface(std::unique_ptr<CommandHandlerPrivate> state)
    : d(std::move(state))
{
}

CommandHandlerInterface::~CommandHandlerInterface() = default;

void CommandHandlerInterface::setCircularMode(bool on)
{
    d->circular = on;
}
