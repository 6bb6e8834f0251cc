#pragma once

#include <QPoint>
#include <QtCharts/QChartView>

/// The view in which the user points at the position to drive to. A press or drag with any button
/// picks a position; with Ctrl held, and no other modifier, it draws a rectangle to zoom into.
class ChartView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    /// The view takes the chart over.
    ChartView(QtCharts::QChart *chart, QWidget *parent);
    ~ChartView() override;

    /// Sets the remembered press position to `p` minus what it was, wrapping around.
    void setPos(QPoint p);

signals:
    /// A picked position in chart values, rounded. `outer` is by how many pixels a drag moved on
    /// outward past an edge of the plot area, in each direction, and otherwise 0.
    void position(QPoint, QPoint outer);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QPoint pickedAt(const QPointF &pixel) const;

    QPoint pressPos;
    QPoint lastPos;
};
