#include "HeadlessPlatform.h"
#include "TraceTrial.h"

#include <QSignalSpy>
#include <QTest>
#include <QtCharts/QChartView>
#include <QtCharts/QValueAxis>

#include <memory>
#include <random>

using namespace trial;

namespace {

/// Every change of a series that a reader is told of, by name.
class Announcements
{
public:
    explicit Announcements(QtCharts::QXYSeries *series)
    {
        const auto watch = [&](auto signal, const char *name) {
            QObject::connect(series, signal, &context,
                             [this, name] { seen << QLatin1String(name); });
        };
        watch(&QtCharts::QXYSeries::pointAdded, "added");
        watch(&QtCharts::QXYSeries::pointRemoved, "removed");
        watch(&QtCharts::QXYSeries::pointsRemoved, "many removed");
        watch(&QtCharts::QXYSeries::pointReplaced, "one replaced");
        watch(&QtCharts::QXYSeries::pointsReplaced, "replaced");
    }
    QStringList take()
    {
        const QStringList taken = seen;
        seen.clear();
        return taken;
    }

private:
    QObject context;
    QStringList seen;
};

const QStringList once{QStringLiteral("replaced")};

struct Chart
{
    Chart()
    {
        trace->addTo(view.chart());
        for (auto side : {Qt::AlignBottom, Qt::AlignLeft}) {
            auto *axis = new QtCharts::QValueAxis;
            axis->setRange(-256, 256);
            view.chart()->addAxis(axis, side);
            trace->attachAxis(axis);
        }
    }
    QtCharts::QChartView view;
    TraceSeries *trace = new TraceSeries;
};

} // namespace

class TraceSeriesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void everyOperationIsAnnouncedOnce();
    void changesTogetherAreAnnouncedOnce();
    void aChangeWithoutChangesIsNotAnnounced();
    void aRangeChangeShowsTheLastPointMeanwhile();
    void aRangeChangeWithoutRedrawsIsNotAnnounced();
    void aRangeChangeIsAnnouncedOnce();
    void nestedRangeChangesEndWithTheOutermost();
    void anyRedrawsEndAsOneAfterAnotherWould();
    void aHandlerOfTheAnnouncementMayChangeTheTrace();
    void aTraceDeletedDuringAChangeIsSurvived();
    void aTraceDeletedByAHandlerIsSurvived();
    void anotherSeriesIsLeftAlone();
    void aTraceWithoutAChartIsALineSeries();
    void aChartThatGoesTakesTheTraceAlong();
    void foreignChangesAreKept();
};

void TraceSeriesTest::everyOperationIsAnnouncedOnce()
{
    Chart chart;
    Announcements announced(chart.trace);
    chart.trace->setPoints(row(5));
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), row(5));
    chart.trace->appendPoints({{5, 0}, {6, 0}});
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), row(7));
    chart.trace->removeOldest(3);
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), row(7).mid(3));
    int count = 0;
    chart.trace->redraw(leaving(row(4, 9), &count));
    QCOMPARE(announced.take(), once);
    QCOMPARE(count, 1);
    QCOMPARE(chart.trace->pointsVector(), row(4, 9));
    chart.trace->redraw(leaving({}, &count));
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), Points{QPointF(3, 9)});
}

void TraceSeriesTest::changesTogetherAreAnnouncedOnce()
{
    Chart chart;
    chart.trace->setPoints(row(5));
    Announcements announced(chart.trace);
    {
        const TraceChange change(chart.trace);
        chart.trace->appendPoints({{5, 0}});
        // What a reader gets meanwhile is up to date.
        QCOMPARE(chart.trace->pointsVector(), row(6));
        {
            const TraceRangeChange range(chart.trace);
            chart.trace->redraw([] { return row(3, 1); });
        }
        QCOMPARE(chart.trace->pointsVector(), row(3, 1));
        chart.trace->removeOldest(1);
        QCOMPARE(announced.take(), QStringList());
    }
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), row(3, 1).mid(1));
}

void TraceSeriesTest::aChangeWithoutChangesIsNotAnnounced()
{
    Chart chart;
    Announcements announced(chart.trace);
    {
        const TraceChange change(chart.trace);
        const TraceChange nested(chart.trace);
    }
    {
        const TraceChange nothing(nullptr);
    }
    QCOMPARE(announced.take(), QStringList());
}

void TraceSeriesTest::aRangeChangeShowsTheLastPointMeanwhile()
{
    Chart chart;
    chart.trace->setPoints(row(5));
    {
        const TraceRangeChange change(chart.trace);
        QCOMPARE(chart.trace->pointsVector(), row(5).mid(4));
    }
    QCOMPARE(chart.trace->pointsVector(), row(5));
    chart.trace->setPoints({});
    {
        const TraceRangeChange change(chart.trace);
        QCOMPARE(chart.trace->count(), 0);
    }
    QCOMPARE(chart.trace->count(), 0);
}

void TraceSeriesTest::aRangeChangeWithoutRedrawsIsNotAnnounced()
{
    Chart chart;
    chart.trace->setPoints(row(5));
    Announcements announced(chart.trace);
    {
        const TraceRangeChange change(chart.trace);
        const TraceRangeChange nested(chart.trace);
    }
    QCOMPARE(announced.take(), QStringList());
    QCOMPARE(chart.trace->pointsVector(), row(5));
}

void TraceSeriesTest::aRangeChangeIsAnnouncedOnce()
{
    Chart chart;
    chart.trace->setPoints(row(5));
    Announcements announced(chart.trace);
    int count = 0;
    Points seen;
    connect(chart.trace, &QtCharts::QXYSeries::pointsReplaced, this,
            [&] { seen = chart.trace->pointsVector(); });
    {
        const TraceRangeChange change(chart.trace);
        for (int i = 0; i < 4; ++i)
            chart.trace->redraw(leaving(row(3, i), &count));
        QCOMPARE(count, 0);
        QCOMPARE(announced.take(), QStringList());
    }
    QCOMPARE(announced.take(), once);
    QCOMPARE(count, 1);
    QCOMPARE(seen, row(3, 3));
}

void TraceSeriesTest::nestedRangeChangesEndWithTheOutermost()
{
    Chart chart;
    chart.trace->setPoints(row(5));
    Announcements announced(chart.trace);
    auto outer = std::make_unique<TraceRangeChange>(chart.trace);
    auto inner = std::make_unique<TraceRangeChange>(chart.trace);
    chart.trace->redraw([] { return row(3, 1); });
    inner.reset();
    QCOMPARE(chart.trace->count(), 1);
    QCOMPARE(announced.take(), QStringList());
    chart.trace->redraw([] { return Points(); });
    outer.reset();
    QCOMPARE(announced.take(), once);
    QCOMPARE(chart.trace->pointsVector(), Points{QPointF(2, 1)});
}

void TraceSeriesTest::anyRedrawsEndAsOneAfterAnotherWould()
{
    std::mt19937 random(77);
    Chart chart;
    for (int run = 0; run < 3000; ++run) {
        Points wanted = row(1 + int(random() % 5), -1);
        chart.trace->setPoints(wanted);
        Announcements announced(chart.trace);
        std::vector<std::unique_ptr<TraceRangeChange>> open;
        open.push_back(std::make_unique<TraceRangeChange>(chart.trace));
        int redraws = 0;
        for (int step = 0; step < 8; ++step) {
            const int kind = int(random() % 4);
            if (kind == 0) {
                open.push_back(std::make_unique<TraceRangeChange>(chart.trace));
            } else if (kind == 1) {
                if (open.size() > 1)
                    open.pop_back();
            } else {
                const Points points = row(int(random() % 4), run * 10 + step);
                chart.trace->redraw([points] { return points; });
                wanted = replacedInTurn(wanted, {points});
                ++redraws;
            }
            QCOMPARE(chart.trace->count(), 1);
        }
        while (!open.empty())
            open.pop_back();
        QCOMPARE(chart.trace->pointsVector(), wanted);
        QCOMPARE(announced.take(), redraws > 0 ? once : QStringList());
    }
}

void TraceSeriesTest::aHandlerOfTheAnnouncementMayChangeTheTrace()
{
    Chart chart;
    int announced = 0;
    connect(chart.trace, &QtCharts::QXYSeries::pointsReplaced, this, [&] {
        if (++announced == 1)
            chart.trace->appendPoints({{9, 9}});
    });
    chart.trace->setPoints(row(3));
    QCOMPARE(announced, 2);
    QCOMPARE(chart.trace->pointsVector(), row(3) << QPointF(9, 9));
}

void TraceSeriesTest::aTraceDeletedDuringAChangeIsSurvived()
{
    Chart chart;
    {
        const TraceChange change(chart.trace);
        const TraceRangeChange range(chart.trace);
        chart.trace->redraw([] { return row(3); });
        delete chart.trace;
    }
    chart.view.show();
    QVERIFY(!chart.view.grab().isNull());
}

void TraceSeriesTest::aTraceDeletedByAHandlerIsSurvived()
{
    Chart chart;
    connect(chart.trace, &QtCharts::QXYSeries::pointsReplaced, this, [&] { delete chart.trace; });
    const QPointer<TraceSeries> trace = chart.trace;
    {
        const TraceChange change(chart.trace);
        const TraceRangeChange range(chart.trace);
        chart.trace->redraw([] { return row(3); });
    }
    QVERIFY(!trace);
    QVERIFY(!chart.view.grab().isNull());
}

void TraceSeriesTest::anotherSeriesIsLeftAlone()
{
    QtCharts::QLineSeries line;
    line.replace(row(5));
    Announcements announced(&line);
    {
        const TraceRangeChange change(&line);
        const TraceRangeChange nothing(nullptr);
        QCOMPARE(line.pointsVector(), row(5));
    }
    QCOMPARE(line.pointsVector(), row(5));
    QCOMPARE(announced.take(), QStringList());
}

void TraceSeriesTest::aTraceWithoutAChartIsALineSeries()
{
    TraceSeries trace;
    Announcements announced(&trace);
    trace.appendPoints(row(5));
    trace.removeOldest(2);
    QCOMPARE(trace.pointsVector(), row(5).mid(2));
    {
        const TraceRangeChange change(&trace);
        QCOMPARE(trace.count(), 1);
        trace.redraw([] { return row(4, 1); });
    }
    QCOMPARE(trace.pointsVector(), row(4, 1));
    QCOMPARE(announced.take(), once + once + once);
    // Added as any series is, it is drawn by the chart.
    QtCharts::QChartView view;
    view.chart()->addSeries(&trace);
    view.chart()->createDefaultAxes();
    view.chart()->legend()->hide();
    const QImage before = view.grab().toImage();
    trace.setPoints(row(4, 1.5));
    QVERIFY(view.grab().toImage() != before);
    view.chart()->removeSeries(&trace);
}

void TraceSeriesTest::aChartThatGoesTakesTheTraceAlong()
{
    auto chart = std::make_unique<Chart>();
    const QPointer<TraceSeries> trace = chart->trace;
    chart->trace->setPoints(row(5));
    chart->view.chart()->removeSeries(chart->trace);
    chart->trace->appendPoints({{9, 9}});
    QCOMPARE(chart->trace->count(), 6);
    QVERIFY(!chart->view.grab().isNull());
    chart->view.chart()->addSeries(chart->trace);
    chart.reset();
    QVERIFY(!trace);
}

void TraceSeriesTest::foreignChangesAreKept()
{
    Chart chart;
    chart.trace->replace(row(5));
    chart.trace->append(5, 0);
    chart.trace->remove(0);
    QCOMPARE(chart.trace->pointsVector(), row(6).mid(1));
    {
        const TraceRangeChange change(chart.trace);
    }
    QCOMPARE(chart.trace->pointsVector(), row(6).mid(1));
    chart.trace->clear();
    chart.trace->appendPoints(row(2));
    QCOMPARE(chart.trace->pointsVector(), row(2));
}

QTEST_MAIN(TraceSeriesTest)
#include "tst_trace_series.moc"
