#include "StopSignal.h"

#include <csignal>
#include <unistd.h>

namespace workbench {

namespace {

// A signal handler may do next to nothing; it writes a byte that the event loop then finds.
int pipeEnds[2] = {-1, -1};

extern "C" void noteStopSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, sizeof byte);
}

void setHandler(int signalNumber, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

StopSignal::StopSignal(QObject *parent)
    : QObject(parent)
{
    if (pipe(pipeEnds) != 0)
        return;
    notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &StopSignal::drain);
    for (const int signalNumber : {SIGINT, SIGTERM})
        setHandler(signalNumber, noteStopSignal, static_cast<int>(SA_RESETHAND | SA_RESTART));
}

StopSignal::~StopSignal()
{
    if (!notifier)
        return;
    for (const int signalNumber : {SIGINT, SIGTERM})
        setHandler(signalNumber, SIG_DFL, 0);
    delete notifier;
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

void StopSignal::drain()
{
    char byte = 0;
    if (read(pipeEnds[0], &byte, sizeof byte) > 0)
        emit stopRequested();
}

} // namespace workbench
