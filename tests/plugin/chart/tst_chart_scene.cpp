#include "HeadlessPlatform.h"
#include "ToolRig.h"

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
    ToolRig rig;
    const QList<QAbstractSeries *> all = rig.chart()->series();
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
    ToolRig rig;
    const QList<QAbstractAxis *> both{rig.axisX(), rig.axisY()};
    const QList<QAbstractSeries *> all = rig.chart()->series();
    for (QAbstractSeries *series : all)
        QCOMPARE(series->attachedAxes(), both);
}

void ChartSceneTest::theAxesHaveNineTicksAndWholeNumbers()
{
    ToolRig rig;
    QCOMPARE(rig.chart()->axes().size(), 2);
    for (QValueAxis *axis : {rig.axisX(), rig.axisY()}) {
        QVERIFY(axis);
        QCOMPARE(axis->tickCount(), 9);
        QCOMPARE(axis->labelFormat(), QStringLiteral("%.0i"));
    }
    QCOMPARE(int(rig.axisX()->alignment()), int(Qt::AlignBottom));
    QCOMPARE(int(rig.axisY()->alignment()), int(Qt::AlignLeft));
}

void ChartSceneTest::theAxesAreNamedAfterTheirFields()
{
    ToolRig rig;
    QCOMPARE(rig.axisX()->titleText(), QStringLiteral("M0_XACTUAL field"));
    QCOMPARE(rig.axisY()->titleText(), QStringLiteral("M1_XACTUAL field"));
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
    RigGaps gaps;
    gaps.fields.insert(missing);
    gaps.hasChip = missing != QLatin1String("chip");
    gaps.hasModule = missing != QLatin1String("module");
    ToolRig rig(0, gaps);
    QCOMPARE(rig.axisX()->titleText() + QLatin1Char('|') + rig.axisY()->titleText(), titles);
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
}

void ChartSceneTest::axisLabelsGroupDigitsTheFrenchWay()
{
    ToolRig rig;
    rig.setLimits(-40960, 40960, -8192, 8192);
    rig.show();
    QVERIFY(rig.chart()->localizeNumbers());
    const QLocale french(QLocale::French, QLocale::France);
    QCOMPARE(french.toString(-40960).size(), 7);
    for (int value : {-40960, 10240, 40960, -8192, 2048, 8192}) {
        const QString label = withPlainSpaces(french.toString(value));
        const QStringList shown = textsIn(rig.view()->scene());
        QVERIFY2(shown.contains(label),
                 qPrintable(label + QLatin1String(" is none of ") + shown.join(QLatin1Char('|'))));
    }
}

void ChartSceneTest::theChartKeepsTheLibrarysLook()
{
    ToolRig rig;
    QCOMPARE(rig.chart()->theme(), QChart::ChartThemeLight);
    QCOMPARE(int(rig.chart()->animationOptions()), int(QChart::NoAnimation));
    QCOMPARE(rig.chart()->title(), QString());
    QVERIFY(rig.chart()->isBackgroundVisible());
    qreal left = -1;
    qreal top = -1;
    qreal right = -1;
    qreal bottom = -1;
    rig.chart()->layout()->getContentsMargins(&left, &top, &right, &bottom);
    QCOMPARE(QMarginsF(left, top, right, bottom), QMarginsF());
}

void ChartSceneTest::theTargetIsATexturedRectangle()
{
    ToolRig rig;
    const LibraryDefaults library;
    QCOMPARE(rig.target()->markerShape(), QScatterSeries::MarkerShapeRectangle);
    QCOMPARE(rig.target()->markerSize(), 27.0);
    QCOMPARE(rig.target()->brush().style(), Qt::TexturePattern);
    QCOMPARE(rig.target()->pen(), library.first->pen());
}

void ChartSceneTest::theTargetsImageIsAThinCross()
{
    ToolRig rig;
    const LibraryDefaults library;
    const QColor colour = library.first->color();
    const QImage image = rig.target()->brush().textureImage();
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
    ToolRig rig;
    const LibraryDefaults library;
    QCOMPARE(rig.actual()->markerShape(), QScatterSeries::MarkerShapeCircle);
    QCOMPARE(rig.actual()->markerSize(), 19.0);
    QCOMPARE(rig.actual()->color(), QColor(Qt::transparent));
    const QPen pen = rig.actual()->pen();
    QCOMPARE(pen.widthF(), 2.0);
    QCOMPARE(pen.style(), Qt::SolidLine);
    QCOMPARE(pen.capStyle(), Qt::SquareCap);
    QCOMPARE(pen.joinStyle(), Qt::BevelJoin);
    QCOMPARE(pen.brush(), QBrush(library.second->color(), Qt::SolidPattern));
}

void ChartSceneTest::theTraceKeepsItsThemeColour()
{
    ToolRig rig;
    const LibraryDefaults library;
    QCOMPARE(rig.trace()->pen(), library.third->pen());
    QVERIFY(rig.trace()->isVisible());
}

void ChartSceneTest::theLegendNamesEachSeriesByItsOwnMarker()
{
    ToolRig rig;
    QCOMPARE(rig.chart()->legend()->markerShape(), QLegend::MarkerShapeFromSeries);
    QStringList labels;
    const QList<QLegendMarker *> markers = rig.chart()->legend()->markers();
    for (QLegendMarker *marker : markers)
        labels << marker->label();
    QCOMPARE(labels,
             QStringList({QStringLiteral("target position"), QStringLiteral("actual position"),
                          QStringLiteral("position trace")}));
}

void ChartSceneTest::theViewIsInThePanel()
{
    ToolRig rig;
    QCOMPARE(QByteArray(rig.view()->metaObject()->className()), QByteArray("ChartView"));
    QCOMPARE(rig.view()->parentWidget(), rig.tool());
    QVERIFY(rig.view()->renderHints().testFlag(QPainter::Antialiasing));
    auto *graphLayout = rig.tool()->findChild<QVBoxLayout *>(QStringLiteral("graphLayout"));
    QVERIFY(graphLayout);
    QCOMPARE(graphLayout->indexOf(rig.view()), 0);
    QCOMPARE(rig.tool()->findChildren<QChartView *>().size(), 1);
}

void ChartSceneTest::theLimitsStartAtOneGridStep()
{
    ToolRig rig;
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
    for (QValueAxis *axis : {rig.axisX(), rig.axisY()}) {
        QCOMPARE(axis->min(), -256.0);
        QCOMPARE(axis->max(), 256.0);
    }
    for (const char *name : {"spM0min", "spM1min"})
        QCOMPARE(rig.widget<QSpinBox>(name)->maximum(), -256);
    for (const char *name : {"spM0max", "spM1max"})
        QCOMPARE(rig.widget<QSpinBox>(name)->minimum(), 256);
}

void ChartSceneTest::thePrototypeHasNoChart()
{
    QVERIFY(toolPrototype());
    QVERIFY(toolPrototype()->findChildren<QObject *>().isEmpty());
}

QTEST_MAIN(ChartSceneTest)
#include "tst_chart_scene.moc"
