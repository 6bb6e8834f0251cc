// From the press on stop until the chip has been told.

#include "LongMove.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace {

constexpr int tracePoints = 100000;
constexpr int moveTimeoutMs = 60000;

/// Passes every request on and notes how far the stop has got. A move is stopped by three writes in
/// a row, the ramp mode last. Requests come from the GUI thread, the press from another.
class StopWatch : public ModuleLink
{
public:
    StopWatch(DriveScene &watched)
        : scene(watched)
        , next(watched.module().link())
        , rampMode(watched.module()
                       .chip()
                       .description()
                       .findRegister(QStringLiteral("RAMPMODE"))
                       ->address)
    {
    }

    void press()
    {
        requestsAtPress = requests.load();
        pressNs = scene.clock().now();
    }

    void reset()
    {
        pressNs = 0;
        isStopped = false;
    }

    bool readRegister(unsigned int address, unsigned char motor, int *value) override
    {
        ++requests;
        return next.readRegister(address, motor, value);
    }

    bool writeRegister(unsigned int address, unsigned char motor, int value) override
    {
        ++requests;
        const bool written = next.writeRegister(address, motor, value);
        if (pressNs > 0 && !isStopped && address == rampMode && value == 0) {
            isStopped = true;
            latencyNs = scene.clock().now() - pressNs;
            latencyRequests = requests - requestsAtPress;
        }
        return written;
    }

    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override
    {
        ++requests;
        return next.userFunction(a, b, function, arg, motor, reply);
    }

    bool isStopped = false;
    qint64 latencyNs = 0;
    int latencyRequests = 0;

private:
    DriveScene &scene;
    ModuleLink &next;
    unsigned int rampMode;
    std::atomic<int> requests{0};
    std::atomic<int> requestsAtPress{0};
    std::atomic<qint64> pressNs{0};
};

void postClick(QWidget *button)
{
    const QPointF at = button->rect().center();
    const QPointF global = button->mapToGlobal(at.toPoint());
    const auto post = [&](QEvent::Type type, Qt::MouseButtons buttons) {
        QCoreApplication::postEvent(
            button, new QMouseEvent(type, at, global, Qt::LeftButton, buttons, Qt::NoModifier));
    };
    post(QEvent::MouseButtonPress, Qt::LeftButton);
    post(QEvent::MouseButtonRelease, Qt::NoButton);
}

template <typename Condition>
void runUntil(const Condition &condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (timer.hasExpired(moveTimeoutMs))
            qFatal("The move is not stopped.");
    }
}

struct Latencies
{
    QVector<double> ms;
    QVector<double> requests;
};

/// One move, stopped from outside at a moment that nothing in the tool knows of.
void stopOnce(LongMove &move, StopWatch &watch, int delayMs, Latencies &latencies)
{
    watch.reset();
    move.start(move.farTarget());
    QWidget *const stop = move.scene().button("pbStop");
    std::thread finger([&watch, stop, delayMs] {
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        watch.press();
        postClick(stop);
    });
    runUntil([&watch] { return watch.isStopped; });
    finger.join();
    runUntil([&move] { return !move.scene().isMoving(); });
    latencies.ms << static_cast<double>(watch.latencyNs) * 1e-6;
    latencies.requests << watch.latencyRequests;
}

Latencies measure(int costUs, int moves)
{
    LongMove move(tracePoints, costUs);
    StopWatch watch(move.scene());
    move.scene().connectTo(&watch);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> delay(300, 800); // ms, from before the top speed on
    Latencies latencies;
    for (int i = 0; i < moves; ++i)
        stopOnce(move, watch, delay(random), latencies);
    move.scene().connectTo(nullptr);
    return latencies;
}

double largest(const QVector<double> &values)
{
    return *std::max_element(values.cbegin(), values.cend());
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("From the press on stop to its last write"));
    const int moves = program.isQuick() ? 3 : 15;
    harness::Table table({QStringLiteral("ms a request"), QStringLiteral("requests, median"),
                          QStringLiteral("requests, most"), QStringLiteral("ms, median"),
                          QStringLiteral("ms, most"), QStringLiteral("moves")});
    for (int costUs : {500, 5000}) {
        const Latencies found = measure(costUs, moves);
        table.addRow(
            {harness::number(costUs / 1000.0), harness::number(harness::median(found.requests)),
             harness::number(largest(found.requests)), harness::number(harness::median(found.ms)),
             harness::number(largest(found.ms)), QString::number(moves)});
    }
    table.print();
    harness::Program::note(
        QStringLiteral("Trace of %1 points; stop is pressed from another thread at random moments. "
                       "The count includes the three writes and a request that was under way.")
            .arg(harness::count(tracePoints)));
    return 0;
}
