#pragma once

#include "CommandHandlerInterface.h"

class CommandHandlerPrivate
{
public:
    static const CommandHandlerPrivate *of(const CommandHandlerInterface *handler)
    {
        return handler->d.get();
    }

    bool circular = false;
};
