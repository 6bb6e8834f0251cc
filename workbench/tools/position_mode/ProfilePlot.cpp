#include "ProfilePlot.h"

#include "PlotScale.h"

#include <QLocale>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int gap = 6;
constexpr int minimumTickSpacing = 50;
constexpr double headRoom = 1.12;

} // namespace

/// Maps seconds and velocities to the area inside the axes.
struct ProfilePlot::Scale
{
    QRectF area;
    double endSeconds = 1;
    double low = 0;
    double high = 1;
    double secondsStep = 1;
    double velocityStep = 1;

    double x(double seconds) const { return area.left() + seconds / endSeconds * area.width(); }
    double y(double velocity) const
    {
        return area.bottom() - (velocity - low) / (high - low) * area.height();
    }
    QPointF map(const QPointF &point) const { return {x(point.x()), y(point.y())}; }
};

ProfilePlot::ProfilePlot(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(QStringLiteral("Velocity profile"));
}

void ProfilePlot::showProfile(const QPolygonF &newCorners, const QVector<VelocityMark> &marks)
{
    if (newCorners == corners && marks == velocityMarks)
        return;
    corners = newCorners;
    velocityMarks = marks;
    messageText.clear();
    update();
}

void ProfilePlot::showMessage(const QString &text)
{
    if (text == messageText && corners.isEmpty())
        return;
    corners.clear();
    velocityMarks.clear();
    messageText = text;
    update();
}

void ProfilePlot::setVelocityUnit(const QString &unit)
{
    velocityUnit = unit;
    update();
}

QStringList ProfilePlot::markNames() const
{
    QStringList names;
    for (const VelocityMark &mark : velocityMarks)
        names << mark.name;
    return names;
}

QSize ProfilePlot::sizeHint() const
{
    return {520, 360};
}

QSize ProfilePlot::minimumSizeHint() const
{
    return {320, 200};
}

void ProfilePlot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (corners.isEmpty()) {
        const QRect inside = rect().adjusted(2 * gap, 2 * gap, -2 * gap, -2 * gap);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, messageText);
        return;
    }
    const Scale scale = makeScale();
    drawGrid(painter, scale);
    drawTitles(painter, scale);
    drawMarks(painter, scale);
    painter.setRenderHint(QPainter::Antialiasing);
    drawProfile(painter, scale);
    drawTotalTime(painter, scale);
}

ProfilePlot::Scale ProfilePlot::makeScale() const
{
    Scale scale;
    const QFontMetrics metrics = fontMetrics();
    scale.endSeconds = corners.last().x() * 1.05;
    for (const QPointF &corner : corners) {
        scale.low = qMin(scale.low, corner.y() * headRoom);
        scale.high = corner.y() > 0 ? qMax(scale.high, corner.y() * headRoom) : scale.high;
    }
    if (scale.low < 0)
        scale.high = 0;
    const int rows = qMax(2, height() / minimumTickSpacing);
    scale.velocityStep = niceStep(scale.high - scale.low, rows);
    int labelWidth = 0;
    for (const double velocity : multiples(scale.velocityStep, scale.low, scale.high))
        labelWidth =
            qMax(labelWidth,
                 metrics.horizontalAdvance(tickText(locale(), velocity, scale.velocityStep)));
    // The titles take a line above the area and one below the numbers under it.
    scale.area = QRectF(rect()).adjusted(labelWidth + 2 * gap, metrics.height() + 2 * gap, -2 * gap,
                                         -2 * metrics.height() - 3 * gap);
    const int columns = qMax(2, static_cast<int>(scale.area.width()) / minimumTickSpacing);
    scale.secondsStep = niceStep(scale.endSeconds, columns);
    return scale;
}

void ProfilePlot::drawGrid(QPainter &painter, const Scale &scale) const
{
    const QColor line = palette().color(QPalette::Midlight);
    const QColor text = palette().color(QPalette::Text);
    const int lineHeight = fontMetrics().height();
    for (const double velocity : multiples(scale.velocityStep, scale.low, scale.high)) {
        const double y = scale.y(velocity);
        painter.setPen(line);
        painter.drawLine(QPointF(scale.area.left(), y), QPointF(scale.area.right(), y));
        painter.setPen(text);
        painter.drawText(QRectF(0, y - lineHeight, scale.area.left() - gap, 2 * lineHeight),
                         Qt::AlignRight | Qt::AlignVCenter,
                         tickText(locale(), velocity, scale.velocityStep));
    }
    for (const double seconds : multiples(scale.secondsStep, 0, scale.endSeconds)) {
        const double x = scale.x(seconds);
        painter.setPen(line);
        painter.drawLine(QPointF(x, scale.area.top()), QPointF(x, scale.area.bottom()));
        painter.setPen(text);
        painter.drawText(QRectF(x - minimumTickSpacing, scale.area.bottom() + gap / 2,
                                2 * minimumTickSpacing, lineHeight),
                         Qt::AlignCenter, tickText(locale(), seconds, scale.secondsStep));
    }
    painter.setPen(text);
    painter.drawLine(scale.area.topLeft(), scale.area.bottomLeft());
    painter.drawLine(QPointF(scale.area.left(), scale.y(0)),
                     QPointF(scale.area.right(), scale.y(0)));
}

void ProfilePlot::drawTitles(QPainter &painter, const Scale &scale) const
{
    const int lineHeight = fontMetrics().height();
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRectF(gap, gap, width() - 2 * gap, lineHeight), Qt::AlignLeft,
                     QStringLiteral("Velocity in %1").arg(velocityUnit));
    painter.drawText(
        QRectF(scale.area.left(), height() - lineHeight - gap, scale.area.width(), lineHeight),
        Qt::AlignRight, QStringLiteral("Time in s"));
}

/// A name that would lie on the one before it is left out; its line stays.
void ProfilePlot::drawMarks(QPainter &painter, const Scale &scale) const
{
    const QColor color = palette().color(QPalette::PlaceholderText);
    const int lineHeight = fontMetrics().height();
    painter.setPen(QPen(color, 1, Qt::DashLine));
    QVector<double> taken;
    for (const VelocityMark &mark : velocityMarks) {
        if (mark.velocity > scale.high || mark.velocity < scale.low)
            continue;
        const double y = scale.y(mark.velocity);
        painter.drawLine(QPointF(scale.area.left(), y), QPointF(scale.area.right(), y));
        const bool isFree = std::none_of(taken.cbegin(), taken.cend(), [&](double other) {
            return qAbs(other - y) < lineHeight;
        });
        if (!isFree)
            continue;
        taken.append(y);
        painter.drawText(
            QRectF(scale.area.left(), y - lineHeight - 1, scale.area.width() - gap, lineHeight),
            Qt::AlignRight | Qt::AlignBottom, mark.name);
    }
}

void ProfilePlot::drawProfile(QPainter &painter, const Scale &scale) const
{
    QPolygonF line;
    for (const QPointF &corner : corners)
        line << scale.map(corner);
    QColor fill = palette().color(QPalette::Highlight);
    constexpr int fillAlpha = 40;
    fill.setAlpha(fillAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(line);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawPolyline(line);
}

void ProfilePlot::drawTotalTime(QPainter &painter, const Scale &scale) const
{
    const double seconds = corners.last().x();
    const double x = scale.x(seconds);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
    painter.drawLine(QPointF(x, scale.area.top()), QPointF(x, scale.area.bottom()));
    painter.setPen(palette().color(QPalette::Text));
    constexpr int decimals = 3;
    painter.drawText(
        QRectF(2 * gap, height() - fontMetrics().height() - gap, width(), fontMetrics().height()),
        Qt::AlignLeft,
        QStringLiteral("Total time %1 s").arg(locale().toString(seconds, 'f', decimals)));
}
