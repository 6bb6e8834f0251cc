#include "LongMove.h"

#include "ToolsInterface.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace {

constexpr int reach = 16384;
constexpr double farX = 15000;
constexpr double farY = 12000;
constexpr int requestUsToNs = 1000;

/// Long enough for what the slowest repaint holds up.
constexpr int startTimeoutMs = 20000;

} // namespace

LongMove::LongMove(int tracePoints, int requestCostUs)
    : drive(reach, tracePoints)
{
    drive.pressStart();
    drive.refill(tracePoints);
    drive.endMove();
    workbench::SimulatedLink &link = drive.module().link();
    link.setRequestCostNs(qint64(requestCostUs) * requestUsToNs);
    drive.connectTo(&link);
}

QPointF LongMove::farTarget()
{
    isOpposite = !isOpposite;
    return isOpposite ? QPointF(-farX, -farY) : QPointF(farX, farY);
}

void LongMove::start(const QPointF &target)
{
    QMetaObject::invokeMethod(drive.tool(), "setTargetPosition", Q_ARG(QPointF, target),
                              Q_ARG(QPoint, QPoint()));
    drive.pressStart();
    QElapsedTimer timer;
    timer.start();
    while (!drive.module().chip().isMoving() && !timer.hasExpired(startTimeoutMs))
        QCoreApplication::processEvents();
    if (!drive.module().chip().isMoving())
        qFatal("The chip does not move.");
}
