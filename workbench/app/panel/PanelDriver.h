#pragma once

#include "PanelView.h"

#include <QPoint>
#include <QPointer>
#include <QRectF>
#include <QString>

class QAbstractButton;
class QAction;
class QSpinBox;
class QToolButton;
class QWidget;

namespace QtCharts {
class QChartView;
class QXYSeries;
} // namespace QtCharts

namespace workbench {

/// Operates the panel of the Synchronized drive tool as a person does: mouse events go to its chart
/// and its buttons, limits are set through its spin boxes' setValue(). It reads what the panel
/// shows and never calls the tool. The panel must be laid out, so visible.
class PanelDriver
{
public:
    /// Looks the panel's parts up; does not own the panel.
    explicit PanelDriver(QWidget *panel);

    /// The first part that the panel lacks; empty when it can be driven.
    QString missingPart() const;

    /// The markers in the chart, position units.
    QPoint target() const;
    QPoint shownPosition() const;

    /// While the start button is disabled.
    bool isMoving() const;

    PanelView view() const;
    void setView(const PanelView &view);
    /// All that the limits allow to show.
    PanelView widestView() const;

    /// In pixels of the chart.
    QRectF plotArea() const;

    /// Presses and releases the left button at the pixel nearest to `point`. False, with nothing
    /// pressed, where that lies outside the plot area. The target() tells what the chart took.
    bool pick(const QPoint &point);

    /// False, with nothing pressed, while the button is disabled.
    bool pressStart();
    bool pressStop();
    bool pressClear();

    /// The entry of the start button's menu with that text, or null. To pop the menu up would block
    /// until somebody chooses, so an entry is triggered instead.
    QAction *menuEntry(const QString &text) const;

    /// Which point of its flight path, counted from 0, the panel drives to; the number of points
    /// when none is run. Stays at the last point after a whole run.
    int flightPathIndex() const;

private:
    QtCharts::QXYSeries *series(const QString &name) const;

    QPointer<QtCharts::QChartView> chartView;
    QPointer<QToolButton> start;
    QPointer<QAbstractButton> stop;
    QPointer<QAbstractButton> clear;
    QPointer<QSpinBox> left;
    QPointer<QSpinBox> right;
    QPointer<QSpinBox> bottom;
    QPointer<QSpinBox> top;
};

} // namespace workbench
