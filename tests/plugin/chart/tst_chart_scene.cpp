#include "HeadlessPlatform.h"
#include "ToolBench.h"

#include <QGraphicsLayout>
#include <QGraphicsTextItem>
#include <QPen>
#include <QSpinBox>
#include <QTest>
#include <QTextDocument>
#include <QVBoxLayout>
#include <QtCharts/QLegend>
#include <QtCharts/QLegendMarker>

using namespace QtCharts;

namespace {

/// What the chart library gives the first, second ... series of a chart that nobody styled.
struct LibraryDefaults
{
    LibraryDefaults()
    {
        chart.addSeries(first);
        chart.addSeries(second);
        chart.addSeries(third);
    }

    QChart chart;
    QScatterSeries *first = new QScatterSeries;
    QScatterSeries *second = new QScatterSeries;
    QLineSeries *third = new QLineSeries;
};

/// The chart's labels may have lost which kind of space separates their groups.
QString withPlainSpaces(QString text)
{
    for (QChar &c : text) {
        if (c.isSpace())
            c = QLatin1Char(' ');
    }
    return text;
}

QStringList textsIn(QGraphicsScene *scene)
{
    QStringList texts;
    const QList<QGraphicsItem *> items = scene->items();
    for (QGraphicsItem *item : items) {
        if (auto *text = dynamic_cast<QGraphicsTextItem *>(item))
            texts << withPlainSpaces(text->document()->toRawText());
    }
    return texts;
}

} // namespace

class ChartSceneTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void theSeriesComeInTheirOrderWithOnePointEach();
    void allSeriesAreOnBothAxes();
    void theAxesHaveNineTicksAndWholeNumbers();
    void theAxesAreNamedAfterTheirFields();
    void withoutTheirFieldsTheAxesHaveNoTitle_data();
    void withoutTheirFieldsTheAxesHaveNoTitle();
    void axisLabelsGroupDigitsTheFrenchWay();
    void theChartKeepsTheLibrarysLook();
    void theTargetIsATexturedRectangle();
    void theTargetsImageIsAThinCross();
    void theActualPositionIsAHollowRing();
    void theTraceKeepsItsThemeColour();
    void theLegendNamesEachSeriesByItsOwnMarker();
    void theViewIsInThePanel();
    void theLimitsStartAtOneGridStep();
    void thePrototypeHasNoChart();
};

void ChartSceneTest::theSeriesComeInTheirOrderWithOnePointEach()
{
    ToolBench bench;
    const QList<QAbstractSeries *> all = bench.chart()->series();
    QCOMPARE(all.size(), 3);
    const QList<QAbstractSeries::SeriesType> types{QAbstractSeries::SeriesTypeScatter,
                                                   QAbstractSeries::SeriesTypeScatter,
                                                   QAbstractSeries::SeriesTypeLine};
    const QStringList names{QStringLiteral("target position"), QStringLiteral("actual position"),
                            QStringLiteral("position trace")};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(all.at(i)->type(), types.at(i));
        QCOMPARE(all.at(i)->name(), names.at(i));
        const auto *points = qobject_cast<QXYSeries *>(all.at(i));
        QCOMPARE(points->pointsVector(), QVector<QPointF>{QPointF(0, 0)});
    }
}

void ChartSceneTest::allSeriesAreOnBothAxes()
{
    ToolBench bench;
    const QList<QAbstractAxis *> both{bench.axisX(), bench.axisY()};
    const QList<QAbstractSeries *> all = bench.chart()->series();
    for (QAbstractSeries *series : all)
        QCOMPARE(series->attachedAxes(), both);
}

void ChartSceneTest::theAxesHaveNineTicksAndWholeNumbers()
{
    ToolBench bench;
    QCOMPARE(bench.chart()->axes().size(), 2);
    for (QValueAxis *axis : {bench.axisX(), bench.axisY()}) {
        QVERIFY(axis);
        QCOMPARE(axis->tickCount(), 9);
        QCOMPARE(axis->labelFormat(), QStringLiteral("%.0i"));
    }
    QCOMPARE(int(bench.axisX()->alignment()), int(Qt::AlignBottom));
    QCOMPARE(int(bench.axisY()->alignment()), int(Qt::AlignLeft));
}

void ChartSceneTest::theAxesAreNamedAfterTheirFields()
{
    ToolBench bench;
    QCOMPARE(bench.axisX()->titleText(), QStringLiteral("M0_XACTUAL field"));
    QCOMPARE(bench.axisY()->titleText(), QStringLiteral("M1_XACTUAL field"));
}

void ChartSceneTest::withoutTheirFieldsTheAxesHaveNoTitle_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("titles");
    QTest::newRow("axis 0") << QStringLiteral("M0_XACTUAL") << QStringLiteral("|M1_XACTUAL field");
    QTest::newRow("axis 1") << QStringLiteral("M1_XACTUAL") << QStringLiteral("M0_XACTUAL field|");
    QTest::newRow("chip") << QStringLiteral("chip") << QStringLiteral("|");
    QTest::newRow("module") << QStringLiteral("module") << QStringLiteral("|");
}

void ChartSceneTest::withoutTheirFieldsTheAxesHaveNoTitle()
{
    QFETCH(QString, missing);
    QFETCH(QString, titles);
    BenchGaps gaps;
    gaps.fields.insert(missing);
    gaps.hasChip = missing != QLatin1String("chip");
    gaps.hasModule = missing != QLatin1String("module");
    ToolBench bench(0, gaps);
    QCOMPARE(bench.axisX()->titleText() + QLatin1Char('|') + bench.axisY()->titleText(), titles);
    QCOMPARE(bench.limits(), QStringLiteral("-256 256 -256 256"));
}

void ChartSceneTest::axisLabelsGroupDigitsTheFrenchWay()
{
    ToolBench bench;
    bench.setLimits(-40960, 40960, -8192, 8192);
    bench.show();
    QVERIFY(bench.chart()->localizeNumbers());
    const QLocale french(QLocale::French, QLocale::France);
    QCOMPARE(french.toString(-40960).size(), 7);
    for (int value : {-40960, 10240, 40960, -8192, 2048, 8192}) {
        const QString label = withPlainSpaces(french.toString(value));
        const QStringList shown = textsIn(bench.view()->scene());
        QVERIFY2(shown.contains(label),
                 qPrintable(label + QLatin1String(" is none of ") + shown.join(QLatin1Char('|'))));
    }
}

void ChartSceneTest::theChartKeepsTheLibrarysLook()
{
    ToolBench bench;
    QCOMPARE(bench.chart()->theme(), QChart::ChartThemeLight);
    QCOMPARE(int(bench.chart()->animationOptions()), int(QChart::NoAnimation));
    QCOMPARE(bench.chart()->title(), QString());
    QVERIFY(bench.chart()->isBackgroundVisible());
    qreal left = -1;
    qreal top = -1;
    qreal right = -1;
    qreal bottom = -1;
    bench.chart()->layout()->getContentsMargins(&left, &top, &right, &bottom);
    QCOMPARE(QMarginsF(left, top, right, bottom), QMarginsF());
}

void ChartSceneTest::theTargetIsATexturedRectangle()
{
    ToolBench bench;
    const LibraryDefaults library;
    QCOMPARE(bench.target()->markerShape(), QScatterSeries::MarkerShapeRectangle);
    QCOMPARE(bench.target()->markerSize(), 27.0);
    QCOMPARE(bench.target()->brush().style(), Qt::TexturePattern);
    QCOMPARE(bench.target()->pen(), library.first->pen());
}

void ChartSceneTest::theTargetsImageIsAThinCross()
{
    ToolBench bench;
    const LibraryDefaults library;
    const QColor colour = library.first->color();
    const QImage image = bench.target()->brush().textureImage();
    QCOMPARE(image.size(), QSize(30, 30));
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 30; ++x) {
            // An antialiased line of width 1 on whole coordinates covers half of two pixels.
            const bool isOnCross =
                ((x == 13 || x == 14) && y < 26) || ((y == 13 || y == 14) && x < 26);
            const bool isNearEnd = (x >= 26 && x < 28) || (y >= 26 && y < 28);
            const QColor pixel = image.pixelColor(x, y);
            const QByteArray where = QByteArray::number(x) + ',' + QByteArray::number(y);
            if (isOnCross) {
                QVERIFY2(pixel.alpha() > 60, where.constData());
                QVERIFY2(qAbs(pixel.red() - colour.red()) < 6, where.constData());
                QVERIFY2(qAbs(pixel.green() - colour.green()) < 6, where.constData());
                QVERIFY2(qAbs(pixel.blue() - colour.blue()) < 6, where.constData());
            } else if (!isNearEnd) {
                QVERIFY2(pixel.alpha() == 0, where.constData());
            }
        }
    }
    for (int along : {2, 8, 20}) {
        QVERIFY(image.pixelColor(13, along).alpha() < 200);
        QVERIFY(image.pixelColor(along, 13).alpha() < 200);
        QVERIFY(image.pixelColor(14, along).alpha() < 200);
    }
}

void ChartSceneTest::theActualPositionIsAHollowRing()
{
    ToolBench bench;
    const LibraryDefaults library;
    QCOMPARE(bench.actual()->markerShape(), QScatterSeries::MarkerShapeCircle);
    QCOMPARE(bench.actual()->markerSize(), 19.0);
    QCOMPARE(bench.actual()->color(), QColor(Qt::transparent));
    const QPen pen = bench.actual()->pen();
    QCOMPARE(pen.widthF(), 2.0);
    QCOMPARE(pen.style(), Qt::SolidLine);
    QCOMPARE(pen.capStyle(), Qt::SquareCap);
    QCOMPARE(pen.joinStyle(), Qt::BevelJoin);
    QCOMPARE(pen.brush(), QBrush(library.second->color(), Qt::SolidPattern));
}

void ChartSceneTest::theTraceKeepsItsThemeColour()
{
    ToolBench bench;
    const LibraryDefaults library;
    QCOMPARE(bench.trace()->pen(), library.third->pen());
    QVERIFY(bench.trace()->isVisible());
}

void ChartSceneTest::theLegendNamesEachSeriesByItsOwnMarker()
{
    ToolBench bench;
    QCOMPARE(bench.chart()->legend()->markerShape(), QLegend::MarkerShapeFromSeries);
    QStringList labels;
    const QList<QLegendMarker *> markers = bench.chart()->legend()->markers();
    for (QLegendMarker *marker : markers)
        labels << marker->label();
    QCOMPARE(labels,
             QStringList({QStringLiteral("target position"), QStringLiteral("actual position"),
                          QStringLiteral("position trace")}));
}

void ChartSceneTest::theViewIsInThePanel()
{
    ToolBench bench;
    QCOMPARE(QByteArray(bench.view()->metaObject()->className()), QByteArray("ChartView"));
    QCOMPARE(bench.view()->parentWidget(), bench.tool());
    QVERIFY(bench.view()->renderHints().testFlag(QPainter::Antialiasing));
    auto *graphLayout = bench.tool()->findChild<QVBoxLayout *>(QStringLiteral("graphLayout"));
    QVERIFY(graphLayout);
    QCOMPARE(graphLayout->indexOf(bench.view()), 0);
    QCOMPARE(bench.tool()->findChildren<QChartView *>().size(), 1);
}

void ChartSceneTest::theLimitsStartAtOneGridStep()
{
    ToolBench bench;
    QCOMPARE(bench.limits(), QStringLiteral("-256 256 -256 256"));
    for (QValueAxis *axis : {bench.axisX(), bench.axisY()}) {
        QCOMPARE(axis->min(), -256.0);
        QCOMPARE(axis->max(), 256.0);
    }
    for (const char *name : {"spM0min", "spM1min"})
        QCOMPARE(bench.widget<QSpinBox>(name)->maximum(), -256);
    for (const char *name : {"spM0max", "spM1max"})
        QCOMPARE(bench.widget<QSpinBox>(name)->minimum(), 256);
}

void ChartSceneTest::thePrototypeHasNoChart()
{
    QVERIFY(toolPrototype());
    QVERIFY(toolPrototype()->findChildren<QObject *>().isEmpty());
}

QTEST_MAIN(ChartSceneTest)
#include "tst_chart_scene.moc"
