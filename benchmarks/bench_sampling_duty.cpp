// How many samples a move gets through the whole tool, and how many the link would allow.

#include "LongMove.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

namespace {

struct Duty
{
    double samplesPerSecond = 0;
    double linkPerSecond = 0;
    double framesPerSecond = 0;
};

double perSecond(qint64 events, qint64 ns)
{
    return static_cast<double>(events) * 1e9 / static_cast<double>(ns);
}

/// The event loop runs as in the application: everything happens when it is due.
void measureTool(DriveScene &scene, int durationMs, Duty &duty)
{
    const auto requests = [&scene] {
        return static_cast<qint64>(scene.module().link().counts().userFunctions);
    };
    const qint64 requestsBefore = requests();
    const int framesBefore = scene.paints().count();
    const qint64 start = scene.clock().now();
    QEventLoop loop;
    QTimer::singleShot(durationMs, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    const qint64 ns = scene.clock().now() - start;
    duty.samplesPerSecond = perSecond(requests() - requestsBefore, ns);
    duty.framesPerSecond = perSecond(scene.paints().count() - framesBefore, ns);
}

void measureLink(DriveScene &scene, int durationMs, Duty &duty)
{
    workbench::SimulatedLink &link = scene.module().link();
    const qint64 start = scene.clock().now();
    const qint64 end = start + qint64(durationMs) * 1000000;
    qint64 requests = 0;
    unsigned char high = 0;
    unsigned char middle = 0;
    unsigned int reply = 0;
    while (scene.clock().now() < end) {
        link.userFunction(&high, &middle, 0xFD, 0, 0, &reply);
        ++requests;
    }
    duty.linkPerSecond = perSecond(requests, scene.clock().now() - start);
}

Duty measure(int tracePoints, int costUs, int durationMs)
{
    LongMove move(tracePoints, costUs);
    move.start(move.farTarget());
    Duty duty;
    measureTool(move.scene(), durationMs, duty);
    measureLink(move.scene(), durationMs, duty);
    if (!move.scene().isMoving() || !move.scene().module().chip().isMoving())
        qFatal("The move was too short.");
    return duty;
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("Samples a second during a move"));
    const int durationMs = program.isQuick() ? 400 : 3000;
    harness::Table table({QStringLiteral("trace points"), QStringLiteral("us a request"),
                          QStringLiteral("samples/s"), QStringLiteral("link alone/s"),
                          QStringLiteral("share %"), QStringLiteral("frames/s")});
    for (int tracePoints : {5000, 20000, 100000}) {
        for (int costUs : {0, 100, 500, 1000}) {
            const Duty duty = measure(tracePoints, costUs, durationMs);
            table.addRow({harness::count(tracePoints), harness::count(costUs),
                          harness::count(qRound64(duty.samplesPerSecond)),
                          harness::count(qRound64(duty.linkPerSecond)),
                          harness::number(100 * duty.samplesPerSecond / duty.linkPerSecond),
                          harness::number(duty.framesPerSecond)});
        }
    }
    table.print();
    harness::Program::note(QStringLiteral("Real event loop and clock, %1 ms each. \"Link alone\": "
                                          "the same request in a bare loop, later in the same "
                                          "move. Traces are full at the start.")
                               .arg(durationMs));
    return 0;
}
