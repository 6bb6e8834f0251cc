#pragma once

#include <QSpinBox>
#include <QVector>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

#include <array>
#include <memory>
#include <optional>

/// What the tool's limits, chart and trace have to do, worked out the slow and plain way: whenever
/// a range changes, the chart maps every point of the history, one by one. A panel of its own with
/// a plain chart, laid out as the tool's, on which nothing of the tool's works. It agrees with the
/// tool as long as both views have the same size and both get the same events.
class TraceModel
{
public:
    TraceModel();
    ~TraceModel();

    // What happens, one operation an event.
    void start();
    void show(const QPointF &position);
    void hide() { isUpdating = false; }
    void sample(const QPointF &position);
    void updateTick();
    void zoom(bool in, std::optional<QPoint> wheelAt = std::nullopt);
    void clear();
    void setTarget(const QPoint &position, const QPoint &outer);
    void setTraceLength(int points) { traceLength = points; }

    // What can be seen.
    QtCharts::QChartView *view() const { return chartView.get(); }
    QtCharts::QChart *chart() const { return chartView->chart(); }
    QtCharts::QValueAxis *valueAxis(int axis) const { return sides.at(size_t(axis)).axis; }
    QSpinBox *limit(int axis, bool upper);
    QVector<QPointF> trace{QPointF(0, 0)};
    QVector<QPointF> history;
    QtCharts::QScatterSeries *target = nullptr;
    QtCharts::QScatterSeries *actual = nullptr;

private:
    /// An axis with the spin boxes of its limits.
    struct Side
    {
        QSpinBox lower, upper;
        QtCharts::QValueAxis *axis = nullptr;
        double (QPointF::*coordinate)() const = nullptr;
    };

    void build(Side &side, Qt::Alignment alignment);
    void lowerChanged(Side &side, int value);
    void upperChanged(Side &side, int value);
    void rangeChanged(Side &side, double min, double max);
    void keepInView(Side &side, const QPointF &point);
    void push(Side &side, bool upper);
    QPoint pixel(const QPointF &point) const;

    std::unique_ptr<QtCharts::QChartView> chartView;
    QtCharts::QLineSeries *mapped = nullptr; ///< Only for its mapping.
    std::array<Side, 2> sides;
    QVector<QPointF> pending;
    int traceLength = 5000;
    bool isUpdating = false;
};
