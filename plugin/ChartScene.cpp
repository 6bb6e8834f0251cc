#include "SynchronisedDriveTool.h"

#include "ChartItems.h"
#include "ChartView.h"
#include "TraceSeries.h"
#include "ui_SynchronisedDriveTool.h"

#include "XmlRegisterWidget.h"
#include "XmlValueRegisterField.h"

#include <QGraphicsLayout>
#include <QPainter>
#include <QtCharts/QChart>
#include <QtCharts/QLegend>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

namespace {

constexpr int axisTickCount = 9;
constexpr double targetMarkerSize = 27.0;
constexpr double actualMarkerSize = 19.0;
constexpr double actualPenWidth = 2.0;

QString fieldName(XmlRegisterWidget *widget)
{
    XmlValueRegisterField *field = widget ? widget->registerField() : nullptr;
    return field ? field->getName() : QString();
}

QtCharts::QValueAxis *addAxis(QtCharts::QChart *chart, const QString &title, Qt::Alignment side)
{
    auto *axis = new QtCharts::QValueAxis;
    axis->setTickCount(axisTickCount);
    axis->setTitleText(title);
    axis->setLabelFormat(QStringLiteral("%.0i"));
    chart->addAxis(axis, side);
    return axis;
}

/// A plus-shaped cross on a transparent ground.
QImage targetMarker(const QColor &colour)
{
    constexpr int side = 30;
    constexpr int centre = 14;
    constexpr int end = 26;
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(QBrush(colour, Qt::SolidPattern));
    painter.drawLine(centre, 0, centre, end);
    painter.drawLine(0, centre, end, centre);
    return image;
}

} // namespace

void SynchronisedDriveTool::initChart()
{
    chart = new QtCharts::QChart;
    chart->setLocalizeNumbers(true);
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    connect(ui->btnZoomOut, &QPushButton::clicked, this, &SynchronisedDriveTool::zoom);
    connect(ui->btnZoomIn, &QPushButton::clicked, this, &SynchronisedDriveTool::zoom);
}

void SynchronisedDriveTool::initChartView()
{
    chartView = new ChartView(chart, this);
    chartView->setRenderHint(QPainter::Antialiasing, true);
    connect(chartView, &ChartView::position, this, &SynchronisedDriveTool::setTargetPosition);
    ui->graphLayout->addWidget(chartView);
}

void SynchronisedDriveTool::initAxes()
{
    axisX = addAxis(chart, fieldName(m0XactualWidget), Qt::AlignBottom);
    axisY = addAxis(chart, fieldName(m1XactualWidget), Qt::AlignLeft);
}

void SynchronisedDriveTool::initSeries()
{
    targetSeries = new QtCharts::QScatterSeries;
    actualSeries = new QtCharts::QScatterSeries;
    traceSeries = new TraceSeries;

    // The order in the chart counts: values under a pixel are mapped through the first series, and
    // the view takes the last one for the trace.
    initTargetSeries();
    initActualSeries();
    traceSeries->setName(QStringLiteral("position trace"));
    trace()->addTo(chart);
    chart->legend()->setMarkerShape(QtCharts::QLegend::MarkerShapeFromSeries);

    const QList<QtCharts::QXYSeries *> all{traceSeries, actualSeries, targetSeries};
    for (QtCharts::QXYSeries *series : all) {
        series->append(0, 0);
        series->attachAxis(axisX);
        series->attachAxis(axisY);
    }
    chartView->setChart(chart);
}

void SynchronisedDriveTool::initTargetSeries()
{
    drive::addMarkers(chart, targetSeries);
    targetSeries->setName(QStringLiteral("target position"));
    targetSeries->setMarkerShape(QtCharts::QScatterSeries::MarkerShapeRectangle);
    targetSeries->setMarkerSize(targetMarkerSize);
    targetSeries->setBrush(QBrush(targetMarker(targetSeries->color())));
}

void SynchronisedDriveTool::initActualSeries()
{
    drive::addMarkers(chart, actualSeries);
    actualSeries->setName(QStringLiteral("actual position"));
    actualSeries->setMarkerShape(QtCharts::QScatterSeries::MarkerShapeCircle);
    actualSeries->setPen(QPen(QBrush(actualSeries->color(), Qt::SolidPattern), actualPenWidth,
                              Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    actualSeries->setColor(Qt::transparent);
    actualSeries->setMarkerSize(actualMarkerSize);
}

void SynchronisedDriveTool::connectRangeHandlers()
{
    const auto follow = [this](QtCharts::QValueAxis *axis, const Limits &limits, Coordinate of) {
        connect(
            axis, &QtCharts::QValueAxis::rangeChanged, axis,
            [this, limits, of](qreal min, qreal max) { rangeChanged(limits, of, min, max); },
            Qt::DirectConnection);
    };
    follow(axisX, horizontal(), &QPointF::x);
    follow(axisY, vertical(), &QPointF::y);
}

/// The trace as what it is.
TraceSeries *SynchronisedDriveTool::trace() const
{
    return static_cast<TraceSeries *>(traceSeries);
}
