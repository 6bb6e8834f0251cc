#pragma once

#include "ChartView.h"

#include <QSignalSpy>
#include <QtCharts/QLineSeries>

#include <memory>

/// Counts the mouse events that the view hands on to its scene.
class SceneEvents : public QObject
{
public:
    int presses = 0;
    int moves = 0;
    int releases = 0;
    /// The signals seen by `spy` when the last move reached the scene.
    const QSignalSpy *spy = nullptr;
    int signalsBeforeMove = -1;

    bool eventFilter(QObject *, QEvent *event) override;
};

/// A view on a chart of two scatter series and a line, at a scale of some units per pixel.
struct ChartViewFixture
{
    ChartViewFixture();

    QtCharts::QChart *chart() const { return view.chart(); }
    QRectF plot() const { return chart()->plotArea(); }
    QPoint inside() const;
    QPoint pickedAt(const QPointF &pixel) const;

    void addSeries(QtCharts::QAbstractSeries *series, QtCharts::QAbstractAxis *x,
                   QtCharts::QAbstractAxis *y);

    void send(QEvent::Type type, const QPointF &at, Qt::MouseButton button, Qt::MouseButtons held,
              Qt::KeyboardModifiers inEvent = Qt::NoModifier);
    void press(const QPointF &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, at, button, button);
    }
    void drag(const QPointF &to, Qt::MouseButtons held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, to, Qt::NoButton, held);
    }
    void release(const QPointF &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, at, button, Qt::NoButton);
    }

    /// The arguments of the one signal since the last time.
    QPoint takeValue() { return spy.count() == 1 ? spy.at(0).at(0).toPoint() : QPoint(-1, -1); }
    QPoint takeOuter()
    {
        return spy.count() == 1 ? spy.takeFirst().at(1).toPoint() : QPoint(-99, -99);
    }

    ChartView view;
    QSignalSpy spy;
    SceneEvents scene;
    QtCharts::QLineSeries *line = new QtCharts::QLineSeries;
    bool isShown = false;
};

/// Base of the tests of the view by itself: a fresh view for each test.
class ChartViewRig : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    std::unique_ptr<ChartViewFixture> f;
};
