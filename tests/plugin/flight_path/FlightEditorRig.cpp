#include "FlightEditorRig.h"

#include "HeadlessPlatform.h"

#include "AppSettings.h"

#include <QDir>

QtCharts::QChart *chartOf(const QDialog *editor)
{
    return editor->findChild<QtCharts::QChartView *>()->chart();
}

QtCharts::QLineSeries *seriesOf(const QDialog *editor)
{
    return qobject_cast<QtCharts::QLineSeries *>(chartOf(editor)->series().value(0));
}

QtCharts::QValueAxis *axisOf(const QDialog *editor, Qt::Orientation orientation)
{
    return qobject_cast<QtCharts::QValueAxis *>(chartOf(editor)->axes(orientation).value(0));
}

void press(const QDialog *editor, QDialogButtonBox::StandardButton which)
{
    QTest::mouseClick(standardButton(editor, which), Qt::LeftButton);
}

QVector<QPointF> pathOf(const ToolRig &rig)
{
    QVector<QPointF> path;
    const bool isOpen =
        inEditor(rig, [&](QDialog *editor) { path = seriesOf(editor)->pointsVector(); });
    if (!isOpen)
        QTest::qFail("no editor", __FILE__, __LINE__);
    return path;
}

Preview::Preview(const QDialog *editor)
    : title(chartOf(editor)->title())
    , points(seriesOf(editor)->pointsVector())
    , horizontal(axisOf(editor, Qt::Horizontal)->min(), axisOf(editor, Qt::Horizontal)->max())
    , vertical(axisOf(editor, Qt::Vertical)->min(), axisOf(editor, Qt::Vertical)->max())
{
}

bool Preview::operator==(const Preview &other) const
{
    return title == other.title && points == other.points && horizontal == other.horizontal &&
           vertical == other.vertical;
}

void FlightEditorRig::initTestCase()
{
    silenceHeadlessPlatform();
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    startFolder = QDir::currentPath();
}

void FlightEditorRig::init()
{
    QVERIFY(QDir::setCurrent(startFolder));
    AppSettings().remove(folderKey);
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void FlightEditorRig::cleanupTestCase()
{
    QDir::setCurrent(startFolder);
    AppSettings().remove(folderKey);
}
