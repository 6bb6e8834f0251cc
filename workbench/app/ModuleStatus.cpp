#include "ModuleStatus.h"

#include "SimulatedModule.h"

#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTimer>

namespace bench {

namespace {

constexpr int updatePeriodMs = 250;
constexpr double nsPerMicrosecond = 1000;

QString wholeNumber(double value)
{
    return QLocale().toString(qRound64(value));
}

} // namespace

ModuleStatus::ModuleStatus(SimulatedModule &simulated, QStatusBar *bar)
    : QObject(bar)
    , module(simulated)
    , motion(addLabel(bar, QStringLiteral("motionLabel"), tr("Axes standing still")))
    , samples(addLabel(bar, QStringLiteral("samplesLabel"), tr("%1 samples/s").arg(100000)))
    , requests(addLabel(bar, QStringLiteral("requestsLabel"), tr("%1 requests/s").arg(100000)))
    , cost(addLabel(bar, QStringLiteral("costLabel"), tr("%1 µs per request").arg(10000)))
{
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ModuleStatus::update);
    timer->start(updatePeriodMs);
    update();
}

void ModuleStatus::update()
{
    module.catchUp();
    rates.update(module.link().counts(), module.clock().now());
    motion->setText(module.chip().isMoving() ? tr("Axes moving") : tr("Axes standing still"));
    samples->setText(tr("%1 samples/s").arg(wholeNumber(rates.samplesPerSecond())));
    requests->setText(tr("%1 requests/s").arg(wholeNumber(rates.requestsPerSecond())));
    const double costNs = static_cast<double>(module.link().requestCostNs());
    cost->setText(tr("%1 µs per request").arg(wholeNumber(costNs / nsPerMicrosecond)));
}

/// Wide enough for all it may say, so that the bar does not shift with each number.
QLabel *ModuleStatus::addLabel(QStatusBar *bar, const QString &name, const QString &widest)
{
    auto *const label = new QLabel(widest);
    label->setObjectName(name);
    label->setMinimumWidth(label->sizeHint().width());
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    bar->addPermanentWidget(label);
    return label;
}

} // namespace bench
