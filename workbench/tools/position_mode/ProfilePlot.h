#pragma once

#include <QPolygonF>
#include <QStringList>
#include <QVector>
#include <QWidget>

/// A velocity that is marked with a line across the plot.
struct VelocityMark
{
    QString name;
    double velocity = 0; ///< signed as the profile

    bool operator==(const VelocityMark &other) const
    {
        return name == other.name && velocity == other.velocity;
    }
};

/// Draws a velocity over time, or a message where there is nothing to draw.
class ProfilePlot : public QWidget
{
    Q_OBJECT
    /// What is drawn, empty while a message is shown: x in s, y in units/s.
    Q_PROPERTY(QPolygonF profile READ profile)
    Q_PROPERTY(QString message READ message)
    Q_PROPERTY(QStringList markNames READ markNames)

public:
    explicit ProfilePlot(QWidget *parent = nullptr);

    void showProfile(const QPolygonF &corners, const QVector<VelocityMark> &marks);
    void showMessage(const QString &text);
    void setVelocityUnit(const QString &unit);

    QPolygonF profile() const { return corners; }
    QString message() const { return messageText; }
    QStringList markNames() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Scale;

    Scale makeScale() const;
    void drawGrid(QPainter &painter, const Scale &scale) const;
    void drawTitles(QPainter &painter, const Scale &scale) const;
    void drawMarks(QPainter &painter, const Scale &scale) const;
    void drawProfile(QPainter &painter, const Scale &scale) const;
    void drawTotalTime(QPainter &painter, const Scale &scale) const;

    QPolygonF corners;
    QVector<VelocityMark> velocityMarks;
    QString messageText;
    QString velocityUnit = QStringLiteral("units/s");
};
