#include "FlightPathDialog.h"

#include "FlightPathReader.h"

#include "AppSettings.h"
#include "DebugCategories.h"

#include <QAction>
#include <QCoreApplication>
#include <QDebug>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsLayout>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtCharts/QChartView>
#include <QtCharts/QLegend>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

#include <limits>

namespace {

constexpr QSize minimumDialogSize(400, 440);

/// Keeps the span of two limits within what a double holds.
double bounded(double limit)
{
    constexpr double bound = std::numeric_limits<double>::max() / 4;
    return qBound(-bound, limit, bound);
}

/// The range of coordinates, which grows point by point. The upper end starts just above zero, not
/// at the lowest double, so that a path of negative coordinates still shows the origin: leave it.
struct Range
{
    double min = std::numeric_limits<double>::max();
    double max = std::numeric_limits<double>::min();

    void include(double coordinate)
    {
        min = qMin(min, coordinate);
        max = qMax(max, coordinate);
    }

    void applyTo(QtCharts::QValueAxis *axis) const
    {
        const double margin = (bounded(max) - bounded(min)) / 10;
        axis->setRange(bounded(min) - margin, bounded(max) + margin);
    }
};

void logFields(const QStringList &fields)
{
    qCDebug(debLowLevel) << fields.size() << fields << fields.size() / 2;
}

} // namespace

FlightPathDialog::FlightPathDialog(const QVector<QPointF> &path, const QAction *action,
                                   const QString &folderKey_, QWidget *tool)
    : QDialog(tool, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowCloseButtonHint)
    , folderKey(folderKey_)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("dialogAllowedPluginsInfo"));
    setWindowTitle(action->text());
    setWindowIcon(action->icon());
    setModal(true);
    setSizeGripEnabled(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(makePreview(path));
    layout->addWidget(makeButtons());
    setMinimumSize(minimumDialogSize);
}

QVector<QPointF> FlightPathDialog::points() const
{
    return series->pointsVector();
}

QWidget *FlightPathDialog::makePreview(const QVector<QPointF> &path)
{
    series = new QtCharts::QLineSeries;
    series->replace(path);
    chart = new QtCharts::QChart;
    chart->setLocalizeNumbers(true);
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    chart->legend()->hide();
    chart->setTitle(QStringLiteral("Default"));
    chart->addSeries(series);
    axisX = addAxis(Qt::AlignBottom);
    axisY = addAxis(Qt::AlignLeft);
    auto *view = new QtCharts::QChartView(chart);
    view->setRenderHint(QPainter::Antialiasing);
    return view;
}

QtCharts::QValueAxis *FlightPathDialog::addAxis(Qt::Alignment side)
{
    auto *axis = new QtCharts::QValueAxis;
    axis->setTitleText(QString());
    axis->setLabelFormat(QStringLiteral("%.0i"));
    chart->addAxis(axis, side);
    series->attachAxis(axis);
    return axis;
}

QWidget *FlightPathDialog::makeButtons()
{
    auto *load = new QPushButton(QStringLiteral("Load csv"));
    connect(load, &QPushButton::clicked, this, [this] { loadCsv(); });
    auto *box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    box->addButton(load, QDialogButtonBox::ResetRole);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return box;
}

void FlightPathDialog::loadCsv()
{
    const QPointer<FlightPathDialog> self(this);
    const QString fileName = askForFile();
    // The file dialog runs an event loop, in which the tool may have been deleted.
    if (!self || fileName.isEmpty() || !readFile(fileName))
        return;
    rememberFolder(fileName);
    fitAxes();
}

/// Empty when no file is chosen.
QString FlightPathDialog::askForFile()
{
    // Not one on the stack: its parent may be deleted while it is open, and it with it.
    const QPointer<QFileDialog> dialog(new QFileDialog(
        parentWidget(), QCoreApplication::translate("SynchronisedDriveTool", "Open plots"),
        AppSettings().value(folderKey).toString(),
        QCoreApplication::translate("SynchronisedDriveTool", "*.csv *.txt")));
    dialog->setFileMode(QFileDialog::ExistingFile);
    const bool isChosen = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return QString();
    dialog->deleteLater();
    return isChosen ? dialog->selectedFiles().value(0) : QString();
}

/// False, with nothing changed, when the file cannot be opened, or is no file: a pipe would keep
/// the panel waiting, and a device never ends.
bool FlightPathDialog::readFile(const QString &fileName)
{
    QFile file(fileName);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    const auto fieldsRead =
        debLowLevel().isDebugEnabled() ? logFields : std::function<void(const QStringList &)>();
    const drive::FlightPathFile path = drive::readFlightPath(file, fieldsRead);
    chart->setTitle(path.title);
    series->replace(path.points);
    return true;
}

/// The folder, unless it is the process's own, which needs no remembering.
void FlightPathDialog::rememberFolder(const QString &fileName) const
{
    const QString folder = QFileInfo(fileName).absolutePath();
    AppSettings settings;
    if (folder == QDir::currentPath())
        settings.remove(folderKey);
    else
        settings.setValue(folderKey, folder);
}

void FlightPathDialog::fitAxes()
{
    const QVector<QPointF> path = points();
    if (path.isEmpty())
        return;
    Range horizontal;
    Range vertical;
    for (const QPointF &point : path) {
        horizontal.include(point.x());
        vertical.include(point.y());
    }
    horizontal.applyTo(axisX);
    vertical.applyTo(axisY);
}
