#include "ChartViewRig.h"

#include "HeadlessPlatform.h"

#include <QMouseEvent>
#include <QTest>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

#include <cmath>

namespace {

QPoint nearest(const QPointF &point)
{
    return {static_cast<int>(std::floor(point.x() + 0.5)),
            static_cast<int>(std::floor(point.y() + 0.5))};
}

} // namespace

bool SceneEvents::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::GraphicsSceneMousePress)
        ++presses;
    if (event->type() == QEvent::GraphicsSceneMouseRelease)
        ++releases;
    if (event->type() == QEvent::GraphicsSceneMouseMove) {
        ++moves;
        signalsBeforeMove = spy ? spy->count() : -1;
    }
    return false;
}

ChartViewFixture::ChartViewFixture()
    : view(new QtCharts::QChart, nullptr)
    , spy(&view, &ChartView::position)
{
    auto *x = new QtCharts::QValueAxis;
    auto *y = new QtCharts::QValueAxis;
    x->setRange(-3000, 5000);
    y->setRange(-2000, 1000);
    chart()->addAxis(x, Qt::AlignBottom);
    chart()->addAxis(y, Qt::AlignLeft);
    addSeries(new QtCharts::QScatterSeries, x, y);
    addSeries(line, x, y);
    for (int i = 0; i < 5; ++i)
        line->append(100 * i, 10 * i);
    view.resize(600, 450);
    view.show();
    isShown = QTest::qWaitForWindowExposed(&view);
    view.scene()->installEventFilter(&scene);
}

QPoint ChartViewFixture::inside() const
{
    return nearest(plot().center());
}

QPoint ChartViewFixture::pickedAt(const QPointF &pixel) const
{
    return nearest(chart()->mapToValue(pixel));
}

void ChartViewFixture::addSeries(QtCharts::QAbstractSeries *series, QtCharts::QAbstractAxis *x,
                                 QtCharts::QAbstractAxis *y)
{
    chart()->addSeries(series);
    series->attachAxis(x);
    series->attachAxis(y);
}

void ChartViewFixture::send(QEvent::Type type, const QPointF &at, Qt::MouseButton button,
                            Qt::MouseButtons held, Qt::KeyboardModifiers inEvent)
{
    QMouseEvent event(type, at, button, held, inEvent);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void ChartViewRig::initTestCase()
{
    silenceHeadlessPlatform();
}

void ChartViewRig::init()
{
    f = std::make_unique<ChartViewFixture>();
    QVERIFY(f->isShown);
    QVERIFY(f->plot().width() > 200 && f->plot().height() > 200);
}

void ChartViewRig::cleanup()
{
    f.reset();
    QCOMPARE(int(QGuiApplication::keyboardModifiers()), int(Qt::NoModifier));
}
