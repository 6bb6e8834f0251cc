#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include <QGraphicsLayout>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTest>
#include <QtCharts/QLegend>

#include <cmath>
#include <functional>
#include <random>

namespace {

/// Images of the same lines differ by this much, and only in few places: what is kept in an image
/// was rounded once more than what is drawn straight onto the ground. Single pixels differ more: a
/// line is rasterised a little differently where it is cut off at another place.
constexpr int mostDifferent = 4;
constexpr int hardlyDifferent = 2;
constexpr double fewPixels = 0.001;
constexpr int singlePixels = 20;

/// A chart view of nothing but the last series, on white.
void leaveOnlyTheTrace(QtCharts::QChartView *view)
{
    QtCharts::QChart *chart = view->chart();
    view->setBackgroundBrush(Qt::white);
    chart->setBackgroundVisible(false);
    chart->legend()->hide();
    const auto axes = chart->axes();
    for (QtCharts::QAbstractAxis *axis : axes)
        axis->hide();
    const auto all = chart->series();
    for (QtCharts::QAbstractSeries *series : all.mid(0, all.size() - 1))
        series->hide();
}

/// TRACE_SEED in the environment makes other runs.
unsigned int seed()
{
    return qEnvironmentVariableIsSet("TRACE_SEED")
               ? unsigned(qEnvironmentVariableIntValue("TRACE_SEED"))
               : 99;
}

/// The tool, and a plain chart that draws the same points by itself.
class PicturePair
{
public:
    PicturePair()
    {
        rig.show();
        // Such a velocity never ends the move.
        rig.setRegister(QStringLiteral("M0_VACTUAL"), 5);
        rig.call("on_pbStart_clicked");
        rig.widget<QSpinBox>("spTraces")->setValue(400);
        leaveOnlyTheTrace(rig.view());

        plain.chart()->addSeries(line);
        for (auto *axis : {x, y}) {
            plain.chart()->addAxis(axis, axis == x ? Qt::AlignBottom : Qt::AlignLeft);
            line->attachAxis(axis);
        }
        leaveOnlyTheTrace(&plain);
        plain.setRenderHints(rig.view()->renderHints());
        plain.chart()->layout()->setContentsMargins(0, 0, 0, 0);
        plain.show();
        setPlotArea(QRectF(40, 20, 500, 400));
    }

    void setPlotArea(const QRectF &area)
    {
        rig.chart()->setPlotArea(area);
        plain.chart()->setPlotArea(area);
    }

    /// Goes on from where the axes were, turning little, and draws that.
    void drive(int samples, double step)
    {
        for (int i = 0; i < samples; ++i) {
            angle += (int(random() % 100) - 50) * 0.01;
            at += QPointF(std::cos(angle), std::sin(angle)) * step;
            if (std::abs(at.x()) > 1900 || std::abs(at.y()) > 1900)
                at *= 0.2;
            rig.sample(qRound(at.x()), qRound(at.y()));
        }
        rig.updateTick();
    }

    /// Makes the plain chart show what the tool's trace holds now.
    void copy()
    {
        QCoreApplication::sendPostedEvents();
        plain.resize(rig.view()->size());
        x->setRange(rig.axisX()->min(), rig.axisX()->max());
        y->setRange(rig.axisY()->min(), rig.axisY()->max());
        line->setPen(rig.trace()->pen());
        line->setVisible(rig.trace()->isVisible());
        line->replace(rig.trace()->pointsVector());
        QCoreApplication::sendPostedEvents();
    }

    ToolRig rig;
    QtCharts::QChartView plain;
    std::mt19937 random{seed()};

private:
    QtCharts::QLineSeries *line = new QtCharts::QLineSeries;
    QtCharts::QValueAxis *x = new QtCharts::QValueAxis;
    QtCharts::QValueAxis *y = new QtCharts::QValueAxis;
    double angle = 0;
    QPointF at;
};

QImage blank(const QtCharts::QChartView *view, double ratio)
{
    QImage image(view->viewport()->size() * ratio, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

QImage picture(QtCharts::QChartView *view, double ratio)
{
    QImage image = blank(view, ratio);
    image.setDevicePixelRatio(ratio);
    view->viewport()->render(&image);
    return image;
}

QImage scaledPicture(QtCharts::QChartView *view, double scale)
{
    QImage image = blank(view, scale);
    QPainter painter(&image);
    painter.scale(scale, scale);
    view->viewport()->render(&painter);
    return image;
}

int channelDifference(QRgb a, QRgb b)
{
    return qMax(std::abs(qRed(a) - qRed(b)),
                qMax(std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))));
}

/// How two images differ by more than they may; nothing when they do not.
QString difference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return QStringLiteral("sizes");
    int worst = 0;
    int many = 0;
    int outliers = 0;
    QPoint place;
    for (int line = 0; line < a.height(); ++line) {
        const auto *ofA = reinterpret_cast<const QRgb *>(a.constScanLine(line));
        const auto *ofB = reinterpret_cast<const QRgb *>(b.constScanLine(line));
        for (int column = 0; column < a.width(); ++column) {
            const int by = channelDifference(ofA[column], ofB[column]);
            many += by > hardlyDifferent;
            outliers += by > mostDifferent;
            if (by > worst) {
                worst = by;
                place = {column, line};
            }
        }
    }
    if (outliers <= singlePixels && many <= fewPixels * a.width() * a.height())
        return {};
    return QStringLiteral("%1 pixels, by up to %2 at %3 %4")
        .arg(many)
        .arg(worst)
        .arg(place.x())
        .arg(place.y());
}

/// Pixels in which the trace shows.
int drawnPixels(const QImage &image)
{
    int drawn = 0;
    for (int line = 0; line < image.height(); ++line) {
        for (int column = 0; column < image.width(); ++column)
            drawn += channelDifference(image.pixel(column, line), qRgb(255, 255, 255)) > 60;
    }
    return drawn;
}

} // namespace

class TracePictureTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void theChartWouldDrawTheSame_data();
    void theChartWouldDrawTheSame();
    void aDifferenceIsSeen();
    void partsAreDrawnAsTheWhole();
    void anyScaleIsDrawn();
    void otherPensAreDrawn_data();
    void otherPensAreDrawn();
    void aHiddenTraceIsNotDrawn();
    void linesAlongTheEdgesShow();
    void theHistoryOfAnOwnScaleComesBack();
    void whatIsOnScreenIsUpToDate();
    void aTurnedViewIsDrawn();
};

void TracePictureTest::theChartWouldDrawTheSame_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<bool>("wholePlotArea");
    QTest::newRow("a pixel a unit") << 1.0 << true;
    QTest::newRow("two pixels a unit") << 2.0 << true;
    QTest::newRow("three pixels a unit") << 3.0 << true;
    QTest::newRow("plot area between pixels") << 1.0 << false;
    QTest::newRow("plot area between pixels, two a unit") << 2.0 << false;
    QTest::newRow("a pixel and a half a unit") << 1.5 << true;
    QTest::newRow("plot area between pixels, 1.25 a unit") << 1.25 << false;
    QTest::newRow("plot area between pixels, 1.75 a unit") << 1.75 << false;
}

void TracePictureTest::theChartWouldDrawTheSame()
{
    QFETCH(double, ratio);
    QFETCH(bool, wholePlotArea);
    PicturePair pair;
    ToolRig &rig = pair.rig;
    const auto random = [&](int low, int high) { return low + int(pair.random() % (high - low)); };
    const std::function<void()> others[] = {
        [&] { rig.widget<QPushButton>("btnZoomIn")->click(); },
        [&] { rig.widget<QPushButton>("btnZoomOut")->click(); },
        [&] { rig.call("on_btnClearTraces_clicked"); },
        [&] { rig.widget<QSpinBox>("spTraces")->setValue(random(10, 600)); },
        [&] { rig.tool()->resize(random(800, 1000), random(500, 700)); },
        [&] { rig.setLimits(-2048, random(2, 8) * 256, -1024, random(2, 8) * 256); },
        [&] {
            const double part = wholePlotArea ? 0 : random(1, 99) / 100.0;
            pair.setPlotArea(QRectF(random(0, 60) + part, random(0, 60) + part,
                                    random(200, 500) + part, random(150, 380) - part));
        }};
    int drawn = 0;
    for (int round = 0; round < 60; ++round) {
        pair.drive(random(1, 150), random(1, 15));
        if (round % 3 == 2)
            others[pair.random() % std::size(others)]();
        pair.copy();
        const QImage seen = picture(rig.view(), ratio);
        QCOMPARE(difference(seen, picture(&pair.plain, ratio)), QString());
        // Kept, and so drawn the same once more.
        QCOMPARE(difference(seen, picture(rig.view(), ratio)), QString());
        drawn = qMax(drawn, drawnPixels(seen));
    }
    QVERIFY(drawn > 500);
}

void TracePictureTest::aDifferenceIsSeen()
{
    PicturePair pair;
    pair.drive(60, 12);
    pair.copy();
    const QImage before = picture(&pair.plain, 1);
    pair.drive(1, 12);
    QVERIFY(!difference(picture(pair.rig.view(), 1), before).isEmpty());
}

void TracePictureTest::partsAreDrawnAsTheWhole()
{
    PicturePair pair;
    pair.rig.setLimits(-512, 512, -512, 512);
    for (int round = 0; round < 30; ++round) {
        pair.drive(40, 12);
        pair.copy();
        const QImage whole = picture(&pair.plain, 1);
        QWidget *viewport = pair.rig.view()->viewport();
        QImage image = whole;
        for (int part = 0; part < 3; ++part) {
            const QRect rect(int(pair.random() % 500), int(pair.random() % 400),
                             1 + int(pair.random() % 200), 1 + int(pair.random() % 200));
            viewport->repaint(rect);
            viewport->render(&image, rect.topLeft(), QRegion(rect));
        }
        QCOMPARE(difference(image, whole), QString());
        QCOMPARE(difference(picture(pair.rig.view(), 1), whole), QString());
    }
}

void TracePictureTest::anyScaleIsDrawn()
{
    PicturePair pair;
    for (double scale : {1.5, 0.5, 2.0, 1.0, 0.77, 1.0, 3.0, 9.0 / 8}) {
        pair.drive(70, 9);
        pair.copy();
        QCOMPARE(
            difference(scaledPicture(pair.rig.view(), scale), scaledPicture(&pair.plain, scale)),
            QString());
        pair.drive(7, 9);
        pair.copy();
        QCOMPARE(difference(picture(pair.rig.view(), 1), picture(&pair.plain, 1)), QString());
    }
}

void TracePictureTest::otherPensAreDrawn_data()
{
    QTest::addColumn<QPen>("pen");
    QTest::newRow("red") << QPen(QColor(Qt::red), 2.0);
    QTest::newRow("thin") << QPen(QColor(Qt::darkGreen), 0.5);
    QTest::newRow("wide") << QPen(QColor(Qt::blue), 7.0);
    QTest::newRow("wide with round caps")
        << QPen(QBrush(Qt::darkCyan), 9.0, Qt::SolidLine, Qt::RoundCap);
    QTest::newRow("translucent") << QPen(QColor(200, 0, 0, 90), 3.0);
}

void TracePictureTest::otherPensAreDrawn()
{
    QFETCH(QPen, pen);
    PicturePair pair;
    pair.rig.widget<QSpinBox>("spTraces")->setValue(150);
    pair.drive(90, 12);
    picture(pair.rig.view(), 1);
    pair.rig.trace()->setPen(pen);
    for (int round = 0; round < 12; ++round) {
        pair.copy();
        QCOMPARE(difference(picture(pair.rig.view(), 1), picture(&pair.plain, 1)), QString());
        pair.drive(30, 12);
    }
}

void TracePictureTest::aHiddenTraceIsNotDrawn()
{
    PicturePair pair;
    pair.drive(90, 12);
    QVERIFY(drawnPixels(picture(pair.rig.view(), 1)) > 100);
    pair.rig.trace()->hide();
    pair.copy();
    QCOMPARE(difference(picture(pair.rig.view(), 1), picture(&pair.plain, 1)), QString());
    QCOMPARE(drawnPixels(picture(pair.rig.view(), 1)), drawnPixels(picture(&pair.plain, 1)));
    pair.drive(30, 12);
    pair.rig.trace()->show();
    pair.copy();
    QCOMPARE(difference(picture(pair.rig.view(), 1), picture(&pair.plain, 1)), QString());
}

void TracePictureTest::linesAlongTheEdgesShow()
{
    for (const QRectF &area : {QRectF(40, 20, 512, 384), QRectF(40.3, 20.6, 511.5, 383.2)}) {
        PicturePair pair;
        pair.setPlotArea(area);
        for (const QPoint &corner : {QPoint(-256, -256), QPoint(-256, 256), QPoint(256, 256),
                                     QPoint(256, -256), QPoint(-255, -256)})
            pair.rig.sample(corner.x(), corner.y());
        pair.rig.updateTick();
        pair.copy();
        QCOMPARE(pair.rig.limits(), QStringLiteral("-256 256 -256 256"));
        for (double ratio : {1.0, 1.25, 1.5, 2.0})
            QCOMPARE(difference(picture(pair.rig.view(), ratio), picture(&pair.plain, ratio)),
                     QString());
    }
}

void TracePictureTest::theHistoryOfAnOwnScaleComesBack()
{
    PicturePair pair;
    pair.drive(300, 9);
    for (double ratio : {1.0, 2.0, 1.0}) {
        for (const char *button : {"btnZoomIn", "btnZoomOut"}) {
            pair.rig.widget<QPushButton>(button)->click();
            pair.copy();
            QCOMPARE(difference(picture(pair.rig.view(), ratio), picture(&pair.plain, ratio)),
                     QString());
        }
    }
}

void TracePictureTest::whatIsOnScreenIsUpToDate()
{
    ToolRig rig;
    rig.show();
    rig.setRegister(QStringLiteral("M0_VACTUAL"), 5);
    rig.call("on_pbStart_clicked");
    rig.widget<QSpinBox>("spTraces")->setValue(150);
    rig.setLimits(-2048, 2048, -2048, 2048);
    QWidget *viewport = rig.view()->viewport();
    double angle = 0;
    int longest = 0;
    for (int tick = 0; tick < 60; ++tick) {
        for (int i = 0; i < 9; ++i, angle += 0.03)
            rig.sample(qRound(1900 * std::cos(angle)), qRound(1500 * std::sin(2.3 * angle)));
        rig.updateTick();
        longest = qMax(longest, rig.trace()->count());
        if (tick % 7 == 3)
            rig.setTarget(QPointF(tick * 20, -tick * 10));
        if (tick % 20 == 11)
            rig.call("on_btnClearTraces_clicked");
        // What a tick takes away is painted behind what it adds.
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents();
        const QPoint at = viewport->mapTo(rig.tool(), QPoint(0, 0));
        const QPixmap shown = rig.tool()->screen()->grabWindow(
            rig.tool()->winId(), at.x(), at.y(), viewport->width(), viewport->height());
        QCOMPARE(difference(shown.toImage().convertToFormat(QImage::Format_RGB32),
                            picture(rig.view(), 1)),
                 QString());
    }
    QCOMPARE(longest, 150);
}

void TracePictureTest::aTurnedViewIsDrawn()
{
    PicturePair pair;
    for (double degrees : {90.0, 12.0, 180.0, 0.0}) {
        pair.drive(70, 9);
        pair.copy();
        const auto turned = [&](QtCharts::QChartView *view) {
            QImage image = blank(view, 1);
            QPainter painter(&image);
            painter.translate(image.rect().center());
            painter.rotate(degrees);
            painter.translate(-image.rect().center());
            view->viewport()->render(&painter);
            return image;
        };
        QCOMPARE(difference(turned(pair.rig.view()), turned(&pair.plain)), QString());
    }
}

QTEST_MAIN(TracePictureTest)
#include "tst_trace_picture.moc"
