#include "Harness.h"

#include "HeadlessPlatform.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include <algorithm>

namespace harness {

namespace {

Result summary(const QString &name, const QVector<Cost> &costs)
{
    Result result;
    result.name = name;
    result.steps = costs.size();
    QVector<double> models;
    QVector<double> paints;
    QVector<double> totals;
    for (const Cost &cost : costs) {
        models << cost.model;
        paints << cost.paint;
        totals << cost.total();
    }
    result.median = {median(models), median(paints)};
    result.medianTotal = median(totals);
    return result;
}

} // namespace

QVector<Result> takeTurns(const QVector<Contender> &contenders, const Effort &effort)
{
    QVector<QVector<Cost>> costs(contenders.size());
    QElapsedTimer timer;
    timer.start();
    for (int turn = -1; turn < effort.most; ++turn) {
        if (turn >= effort.fewest && timer.hasExpired(effort.budgetMs))
            break;
        for (int i = 0; i < contenders.size(); ++i) {
            if (!contenders.at(i).step)
                continue;
            const Cost cost = contenders.at(i).step();
            if (turn >= 0)
                costs[i].append(cost);
        }
    }
    QVector<Result> results;
    for (int i = 0; i < contenders.size(); ++i)
        results.append(summary(contenders.at(i).name, costs.at(i)));
    return results;
}

double median(QVector<double> values)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}

double paintPosted()
{
    return millisecondsOf([] { QCoreApplication::sendPostedEvents(); });
}

PaintWatch::PaintWatch(QWidget *painted)
{
    painted->installEventFilter(this);
}

double PaintWatch::paint(const std::function<void()> &redraw)
{
    const int before = events;
    const double cost = millisecondsOf([&redraw] {
        if (redraw)
            redraw();
        paintPosted();
    });
    if (events == before)
        qFatal("A step left nothing to paint: what was measured is not what was meant.");
    return cost;
}

bool PaintWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint)
        ++events;
    return QObject::eventFilter(watched, event);
}

Effort Program::effort(int most) const
{
    return quick ? Effort{2, 3, 2000} : Effort{5, most, 15000};
}

void beginHeadless()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    silenceHeadlessPlatform();
}

} // namespace harness
