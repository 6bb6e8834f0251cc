#pragma once

#include <QDialog>
#include <QPointF>
#include <QVector>
#include <QtCharts/QChartGlobal>

class QAction;

namespace QtCharts {
class QChart;
class QLineSeries;
class QValueAxis;
} // namespace QtCharts

/// Shows a flight path and loads another one from a file. The dialog deletes itself when it closes,
/// before exec() returns.
class FlightPathDialog : public QDialog
{
public:
    /// Takes its title and icon from the action that opens it. `folderKey` is the settings key
    /// under which the folder of the last file is kept.
    FlightPathDialog(const QVector<QPointF> &path, const QAction *action, const QString &folderKey,
                     QWidget *tool);

    /// The points in the preview.
    QVector<QPointF> points() const;

private:
    QWidget *makePreview(const QVector<QPointF> &path);
    QWidget *makeButtons();
    QtCharts::QValueAxis *addAxis(Qt::Alignment side);
    void loadCsv();
    QString askForFile();
    bool readFile(const QString &fileName);
    void rememberFolder(const QString &fileName) const;
    void fitAxes();

    QString folderKey;
    QtCharts::QChart *chart = nullptr;
    QtCharts::QLineSeries *series = nullptr;
    QtCharts::QValueAxis *axisX = nullptr;
    QtCharts::QValueAxis *axisY = nullptr;
};
