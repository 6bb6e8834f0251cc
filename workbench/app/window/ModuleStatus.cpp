#include "ModuleStatus.h"

#include "AxesState.h"
#include "SimulatedModule.h"
#include "TapeLink.h"

#include <QFileInfo>
#include <QFontMetrics>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTimer>

namespace workbench {

namespace {

constexpr int updatePeriodMs = 250;
constexpr double nsPerMicrosecond = 1000;
constexpr int widestName = 240; ///< pixels

QString wholeNumber(double value)
{
    return QLocale().toString(qRound64(value));
}

} // namespace

ModuleStatus::ModuleStatus(SimulatedModule &simulated, QStatusBar *bar)
    : QObject(bar)
    , module(simulated)
    , replay(addLabel(bar, QStringLiteral("replayLabel"), QString()))
    , motion(addLabel(bar, QStringLiteral("motionLabel"), tr("Axes standing still")))
    , samples(addLabel(bar, QStringLiteral("samplesLabel"), tr("%1 samples/s").arg(100000)))
    , requests(addLabel(bar, QStringLiteral("requestsLabel"), tr("%1 requests/s").arg(100000)))
    , cost(addLabel(bar, QStringLiteral("costLabel"), tr("%1 µs per request").arg(10000)))
{
    replay->hide();
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ModuleStatus::update);
    timer->start(updatePeriodMs);
    update();
}

void ModuleStatus::update()
{
    module.catchUp();
    rates.update(tape ? tape->counts() : module.link().counts(), module.clock().now());
    const bool areAtRest = AxesState(module, tape).areAtRest();
    motion->setText(areAtRest ? tr("Axes standing still") : tr("Axes moving"));
    samples->setText(tr("%1 samples/s").arg(wholeNumber(rates.samplesPerSecond())));
    requests->setText(tr("%1 requests/s").arg(wholeNumber(rates.requestsPerSecond())));
    const auto costNs = static_cast<double>(module.link().requestCostNs());
    cost->setText(tr("%1 µs per request").arg(wholeNumber(costNs / nsPerMicrosecond)));
    if (tape)
        updateReplay();
}

void ModuleStatus::showReplay(const TapeLink &played, const QString &fileName)
{
    tape = &played;
    tapeName = QFontMetrics(replay->font())
                   .elidedText(QFileInfo(fileName).fileName(), Qt::ElideMiddle, widestName);
    rates = LinkRates();
    replay->setText(replayText(played.writeCount(), tr("waiting for the next") + deviatingText()));
    replay->setMinimumWidth(replay->sizeHint().width());
    replay->show();
    // Each request takes as long as it took, which no one number tells.
    cost->hide();
    update();
}

QString ModuleStatus::deviatingText()
{
    return tr(", not as on the tape");
}

QString ModuleStatus::replayText(int repeated, const QString &state) const
{
    return tr("Replaying %1: %2 of %3 writes, %4")
        .arg(tapeName)
        .arg(repeated)
        .arg(tape->writeCount())
        .arg(state);
}

void ModuleStatus::updateReplay()
{
    const QString first = tape->deviation();
    const bool isWaiting = tape->waitingNs() >= 0;
    QString state = isWaiting ? tr("waiting for the next") : tr("running");
    if (tape->isPlayed())
        state = tr("played");
    else if (tape->isAtEnd())
        state = tr("at its end");
    if (!first.isEmpty())
        state += deviatingText();
    replay->setText(replayText(tape->repeatedWriteCount(), state));
    const QString awaited = tape->awaitedWrite();
    const QString next = awaited.isEmpty() ? QString() : tr("Next on the tape: %1").arg(awaited);
    replay->setToolTip(first.isEmpty() ? next : tr("First: %1").arg(first));
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

} // namespace workbench
