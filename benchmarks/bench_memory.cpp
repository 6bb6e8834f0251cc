// What the process occupies after many samples.

#include "DriveScene.h"

#include <QApplication>
#include <QFile>

namespace {

constexpr int samplesPerTick = 50;
constexpr int ticksPerPaint = 20;
constexpr int traceCapacity = 5000;

/// VmRSS of this process in MiB; 0 where the system does not tell.
double residentMebibytes()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    }
    return 0;
}

void runTicks(DriveScene &scene, int ticks)
{
    for (int i = 1; i <= ticks; ++i) {
        scene.samplePath(samplesPerTick);
        scene.updateTick();
        if (i % ticksPerPaint == 0)
            harness::paintPosted();
    }
}

} // namespace

int main(int argc, char *argv[])
{
    harness::beginHeadless();
    QApplication app(argc, argv);
    const harness::Program program(QStringLiteral("Memory"));
    DriveScene scene(2048, traceCapacity);
    scene.pressStart();
    const double atStart = residentMebibytes();

    harness::Table table({QStringLiteral("samples"), QStringLiteral("resident MiB"),
                          QStringLiteral("more than at first")});
    table.addRow({QStringLiteral("0"), harness::number(atStart), QStringLiteral("0")});
    QVector<int> stages{100000, 200000};
    if (!program.isQuick())
        stages << 1000000;
    int samples = 0;
    for (int stage : qAsConst(stages)) {
        runTicks(scene, (stage - samples) / samplesPerTick);
        samples = stage;
        const double now = residentMebibytes();
        table.addRow(
            {harness::count(samples), harness::number(now), harness::number(now - atStart)});
    }
    table.print();
    harness::Program::note(QStringLiteral("%1 samples a tick, every one a new position; trace of "
                                          "%2 points; painted every %3 ticks.")
                               .arg(samplesPerTick)
                               .arg(harness::count(traceCapacity))
                               .arg(ticksPerPaint));
    return 0;
}
