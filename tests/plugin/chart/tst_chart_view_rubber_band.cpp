#include "ChartViewRig.h"
#include "ToolRig.h"

#include <QTest>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

using QtCharts::QChartView;

class ChartViewRubberBandTest : public ChartViewRig
{
    Q_OBJECT

private slots:
    void theRubberBandStaysUntilAPlainPress();
    void aRubberBandReleaseLeavesTheNewestTracePoint_data();
    void aRubberBandReleaseLeavesTheNewestTracePoint();
    void aPlainReleaseLeavesTheTrace();
    void onlyALineAtTheEndOfTheSeriesIsCutShort();
    void aRubberBandZoomsInAndARightReleaseZoomsOut();
};

void ChartViewRubberBandTest::theRubberBandStaysUntilAPlainPress()
{
    const QPoint at = f->inside();
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->press(at);
        QCOMPARE(f->view.rubberBand(), QChartView::RectangleRubberBand);
    }
    f->release(at);
    f->drag(at, Qt::NoButton);
    QCOMPARE(f->view.rubberBand(), QChartView::RectangleRubberBand);
    f->press(at);
    QCOMPARE(f->view.rubberBand(), QChartView::NoRubberBand);
}

void ChartViewRubberBandTest::aRubberBandReleaseLeavesTheNewestTracePoint_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<bool>("isCtrlHeldAtRelease");
    QTest::newRow("five points, Ctrl held") << 5 << true;
    QTest::newRow("five points, Ctrl let go") << 5 << false;
    QTest::newRow("one point") << 1 << false;
    QTest::newRow("no point") << 0 << false;
}

void ChartViewRubberBandTest::aRubberBandReleaseLeavesTheNewestTracePoint()
{
    QFETCH(int, points);
    QFETCH(bool, isCtrlHeldAtRelease);
    f->line->removePoints(0, 5 - points);
    auto ctrl = std::make_unique<HeldKeys>(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside());
    if (!isCtrlHeldAtRelease)
        ctrl.reset();
    QCOMPARE(f->line->count(), points);
    f->release(f->inside());
    if (points == 0)
        QCOMPARE(f->line->count(), 0);
    else
        QCOMPARE(f->line->pointsVector(), QVector<QPointF>{QPointF(400, 40)});
}

void ChartViewRubberBandTest::aPlainReleaseLeavesTheTrace()
{
    f->press(f->inside());
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->release(f->inside());
    QCOMPARE(f->line->count(), 5);
}

void ChartViewRubberBandTest::onlyALineAtTheEndOfTheSeriesIsCutShort()
{
    auto *scatter = new QtCharts::QScatterSeries;
    f->chart()->addSeries(scatter);
    scatter->append(1, 1);
    scatter->append(2, 2);
    {
        const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
        f->press(f->inside());
        f->release(f->inside());
        QCOMPARE(scatter->count(), 2);
        QCOMPARE(f->line->count(), 5);
    }
    f->chart()->removeAllSeries();
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(f->inside());
    f->release(f->inside());
    QVERIFY(f->chart()->series().isEmpty());
}

void ChartViewRubberBandTest::aRubberBandZoomsInAndARightReleaseZoomsOut()
{
    auto *x = qobject_cast<QtCharts::QValueAxis *>(f->chart()->axes(Qt::Horizontal).at(0));
    const QPoint from = f->inside() - QPoint(50, 50);
    const QPoint to = f->inside() + QPoint(50, 50);
    const double low = f->chart()->mapToValue(from).x();
    const double high = f->chart()->mapToValue(to).x();
    const double perPixel = (high - low) / 100;
    const HeldKeys ctrl(f->view.viewport(), Qt::ControlModifier);
    f->press(from);
    f->drag(to);
    f->release(to);
    QVERIFY2(qAbs(x->min() - low) <= 2 * perPixel, qPrintable(QString::number(x->min())));
    QVERIFY2(qAbs(x->max() - high) <= 2 * perPixel, qPrintable(QString::number(x->max())));
    const double span = x->max() - x->min();
    f->press(to, Qt::RightButton);
    f->release(to, Qt::RightButton);
    QVERIFY(qAbs(x->max() - x->min() - 2 * span) < span / 100);
}

QTEST_MAIN(ChartViewRubberBandTest)
#include "tst_chart_view_rubber_band.moc"
