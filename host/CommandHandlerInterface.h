#pragma once

#include <memory>

class CommandHandlerPrivate;

/// The queue that carries one module's requests. Owned by the host.
class CommandHandlerInterface
{
public:
    explicit CommandHandlerInterface(std::unique_ptr<CommandHandlerPrivate> state);
    ~CommandHandlerInterface();

    /// While on, requests count as one of a repeated series and are kept out of the request log.
    /// A caller switches it on for the duration of a single request and off again.
    void setCircularMode(bool on);

private:
    friend class CommandHandlerPrivate;
    std::unique_ptr<CommandHandlerPrivate> d;
};
