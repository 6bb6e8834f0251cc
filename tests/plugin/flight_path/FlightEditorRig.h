#pragma once

#include "FlightDialogs.h"
#include "PollRig.h"

#include <QPair>
#include <QTemporaryDir>
#include <QVector>

#include <memory>

/// Where the settings keep the folder of the last flight path.
inline const QString folderKey = QStringLiteral("rig tool/Path");

QtCharts::QChart *chartOf(const QDialog *editor);
QtCharts::QLineSeries *seriesOf(const QDialog *editor);
QtCharts::QValueAxis *axisOf(const QDialog *editor, Qt::Orientation orientation);
void press(const QDialog *editor, QDialogButtonBox::StandardButton which);

/// The tool's flight path, by a look into its editor.
QVector<QPointF> pathOf(const ToolRig &rig);

/// What is seen of a preview.
struct Preview
{
    explicit Preview(const QDialog *editor);
    bool operator==(const Preview &other) const;

    QString title;
    QVector<QPointF> points;
    QPair<double, double> horizontal;
    QPair<double, double> vertical;
};

/// Base of the tests of the flight path editor: an empty folder for the files of each test, and no
/// remembered one.
class FlightEditorRig : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

protected:
    QString path(const char *name) const { return folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> folder;

private:
    QString startFolder;
};
