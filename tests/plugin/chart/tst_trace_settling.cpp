#include "TraceTrial.h"

#include <QTest>

#include <array>
#include <random>

using namespace trial;

class TraceSettlingTest : public QObject
{
    Q_OBJECT

private slots:
    void noRedrawLeavesThePoints();
    void onlyTheLastRedrawIsWorkedOut();
    void emptyRedrawsAreLookedThroughBackwards();
    void onlyEmptyRedrawsLeaveTheLastPoint();
    void redrawsSettleAsOneAfterAnotherWould();
};

void TraceSettlingTest::noRedrawLeavesThePoints()
{
    QCOMPARE(settledTrace({}, row(7)), row(7));
    QCOMPARE(settledTrace({}, {}), Points());
}

void TraceSettlingTest::onlyTheLastRedrawIsWorkedOut()
{
    int counts[3] = {};
    QCOMPARE(settledTrace({leaving(row(5, 1), &counts[0]), leaving(row(5, 2), &counts[1]),
                           leaving(row(5, 3), &counts[2])},
                          row(7)),
             row(5, 3));
    QCOMPARE(counts[0], 0);
    QCOMPARE(counts[1], 0);
    QCOMPARE(counts[2], 1);
}

void TraceSettlingTest::emptyRedrawsAreLookedThroughBackwards()
{
    int counts[4] = {};
    QCOMPARE(settledTrace({leaving(row(5, 1), &counts[0]), leaving(row(5, 2), &counts[1]),
                           leaving({}, &counts[2]), leaving({}, &counts[3])},
                          row(7)),
             Points{QPointF(4, 2)});
    QCOMPARE(counts[0], 0);
    QCOMPARE(counts[1], 1);
    QCOMPARE(counts[2], 1);
    QCOMPARE(counts[3], 1);
}

void TraceSettlingTest::onlyEmptyRedrawsLeaveTheLastPoint()
{
    int count = 0;
    QCOMPARE(settledTrace({leaving({}, &count)}, row(7)), Points{QPointF(6, 0)});
    QCOMPARE(count, 1);
    QCOMPARE(settledTrace({leaving({}, &count), leaving({}, &count)}, {}), Points());
}

void TraceSettlingTest::redrawsSettleAsOneAfterAnotherWould()
{
    std::mt19937 random(2024);
    for (int run = 0; run < 5000; ++run) {
        const Points before = row(int(random() % 4), -1);
        QVector<Points> all;
        QVector<TraceSeries::Redraw> redraws;
        std::array<int, 6> counts{};
        for (size_t i = 0; i < random() % 7; ++i) {
            all << row(random() % 2 ? 0 : int(random() % 4), double(i));
            redraws << leaving(all.constLast(), &counts.at(i));
        }
        QCOMPARE(settledTrace(redraws, before), replacedInTurn(before, all));
        bool shows = true;
        for (int i = all.size() - 1; i >= 0; --i) {
            QCOMPARE(counts.at(size_t(i)), shows ? 1 : 0);
            shows = shows && all.at(i).isEmpty();
        }
    }
}

QTEST_MAIN(TraceSettlingTest)
#include "tst_trace_settling.moc"
