#include "EventWatch.h"
#include "FlightDialogs.h"
#include "HeadlessPlatform.h"
#include "PollBench.h"

#include "AppSettings.h"
#include "HostLocale.h"

#include <QDir>
#include <QGraphicsLayout>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtCharts/QLegend>

#include <unistd.h>

namespace {

const auto folderKey = QStringLiteral("bench tool/Path");

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

/// The tool's flight path, by a look into its editor.
QVector<QPointF> pathOf(const ToolBench &bench)
{
    QVector<QPointF> path;
    const bool isOpen =
        inEditor(bench, [&](QDialog *editor) { path = seriesOf(editor)->pointsVector(); });
    if (!isOpen)
        QTest::qFail("no editor", __FILE__, __LINE__);
    return path;
}

/// What is seen of a preview.
struct Preview
{
    explicit Preview(const QDialog *editor)
        : title(chartOf(editor)->title())
        , points(seriesOf(editor)->pointsVector())
        , horizontal(axisOf(editor, Qt::Horizontal)->min(), axisOf(editor, Qt::Horizontal)->max())
        , vertical(axisOf(editor, Qt::Vertical)->min(), axisOf(editor, Qt::Vertical)->max())
    {
    }
    bool operator==(const Preview &other) const
    {
        return title == other.title && points == other.points && horizontal == other.horizontal &&
               vertical == other.vertical;
    }

    QString title;
    QVector<QPointF> points;
    QPair<double, double> horizontal;
    QPair<double, double> vertical;
};

} // namespace

class ToolFlightPathDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void windowIsAsTheHostExpectsIt();
    void dialogIsGoneOnceItIsClosed();
    void previewShowsThePath();
    void localeIsTheHostsAgain();
    void buttonsStandBelowThePreview();
    void okTakesThePoints();
    void cancelChangesNothing_data();
    void cancelChangesNothing();
    void loadedPathIsShownWithItsTitle();
    void secondFileReplacesTheFirst();
    void axesShowAllPoints_data();
    void axesShowAllPoints();
    void hugeCoordinatesKeepTheAxesFinite();
    void fileWithoutPointsLeavesAnEmptyPreview_data();
    void fileWithoutPointsLeavesAnEmptyPreview();
    void fileDialogIsSetUpForPaths();
    void fileDialogBeginsInTheRememberedFolder();
    void folderOfTheFileIsRemembered();
    void currentFolderIsForgotten();
    void cancelledFileDialogChangesNothing();
    void unreadableFileChangesNothing_data();
    void unreadableFileChangesNothing();
    void toolDeletedWithTheDialogOpenIsSurvived();
    void toolDeletedAsTheDialogIsAcceptedIsSurvived();
    void toolDeletedWithTheFileDialogOpenIsSurvived();

private:
    QString path(const char *name) const { return folder->filePath(QLatin1String(name)); }
    std::unique_ptr<QTemporaryDir> folder;
    QString startFolder;
};

void ToolFlightPathDialogTest::initTestCase()
{
    silenceHeadlessPlatform();
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    startFolder = QDir::currentPath();
}

void ToolFlightPathDialogTest::init()
{
    QVERIFY(QDir::setCurrent(startFolder));
    AppSettings().remove(folderKey);
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void ToolFlightPathDialogTest::cleanupTestCase()
{
    QDir::setCurrent(startFolder);
    AppSettings().remove(folderKey);
}

void ToolFlightPathDialogTest::windowIsAsTheHostExpectsIt()
{
    PollBench bench;
    // While a dialog is executed the attribute is off; it counts when the dialog comes up.
    bool isDeletedOnClose = false;
    const EventWatch watch([&](QObject *receiver, QEvent *event) {
        const auto *dialog = qobject_cast<QDialog *>(receiver);
        if (dialog && event->type() == QEvent::Show)
            isDeletedOnClose = isDeletedOnClose || dialog->testAttribute(Qt::WA_DeleteOnClose);
    });
    const QImage icon = menuEntry(bench, "Edit flight path")->icon().pixmap(16).toImage();
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QCOMPARE(editor->parent(), bench.tool());
        QCOMPARE(editor->objectName(), QStringLiteral("dialogAllowedPluginsInfo"));
        QCOMPARE(editor->windowTitle(), QStringLiteral("Edit flight path"));
        QCOMPARE(editor->windowIcon().pixmap(16).toImage(), icon);
        QVERIFY(editor->isVisible());
        QVERIFY(editor->isModal());
        QVERIFY(editor->isSizeGripEnabled());
        QVERIFY(isDeletedOnClose);
        QCOMPARE(editor->minimumSize(), QSize(400, 440));
        QCOMPARE(editor->windowType(), Qt::Dialog);
        for (const Qt::WindowType flag :
             {Qt::MSWindowsFixedSizeDialogHint, Qt::WindowCloseButtonHint})
            QVERIFY(editor->windowFlags().testFlag(flag));
        QVERIFY(!editor->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    }));
}

void ToolFlightPathDialogTest::dialogIsGoneOnceItIsClosed()
{
    PollBench bench;
    QPointer<QDialog> seen;
    for (const auto which : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel}) {
        QVERIFY(inEditor(bench, [&](QDialog *editor) {
            seen = editor;
            press(editor, which);
        }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!seen);
    }
    QCOMPARE(bench.tool()->findChildren<QDialog *>().size(), 0);
}

void ToolFlightPathDialogTest::previewShowsThePath()
{
    PollBench bench;
    QVERIFY(inEditor(bench, [](QDialog *editor) {
        const QtCharts::QChart *chart = chartOf(editor);
        QCOMPARE(chart->title(), QStringLiteral("Default"));
        QVERIFY(chart->localizeNumbers());
        QVERIFY(!chart->legend()->isVisible());
        qreal left = 1, top = 1, right = 1, bottom = 1;
        chart->layout()->getContentsMargins(&left, &top, &right, &bottom);
        QCOMPARE(QRectF(left, top, right, bottom), QRectF(0, 0, 0, 0));
        const auto *view = editor->findChild<QtCharts::QChartView *>();
        QVERIFY(view->renderHints().testFlag(QPainter::Antialiasing));
        QCOMPARE(chart->series().size(), 1);
        QCOMPARE(seriesOf(editor)->count(), 12);
        QCOMPARE(seriesOf(editor)->at(6), QPointF(512, 1800));
        QCOMPARE(chart->axes().size(), 2);
        QCOMPARE(axisOf(editor, Qt::Horizontal)->alignment(), Qt::AlignBottom);
        QCOMPARE(axisOf(editor, Qt::Vertical)->alignment(), Qt::AlignLeft);
        for (const Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
            QCOMPARE(axisOf(editor, orientation)->labelFormat(), QStringLiteral("%.0i"));
            QCOMPARE(axisOf(editor, orientation)->titleText(), QString());
            QVERIFY(seriesOf(editor)->attachedAxes().contains(axisOf(editor, orientation)));
        }
    }));
}

void ToolFlightPathDialogTest::localeIsTheHostsAgain()
{
    PollBench bench;
    QLocale::setDefault(QLocale::c());
    QVERIFY(inEditor(bench, [](QDialog *) { QCOMPARE(QLocale(), curLocale); }));
    QCOMPARE(QLocale(), curLocale);
}

void ToolFlightPathDialogTest::buttonsStandBelowThePreview()
{
    PollBench bench;
    QVERIFY(inEditor(bench, [](QDialog *editor) {
        const auto *layout = qobject_cast<QVBoxLayout *>(editor->layout());
        QVERIFY(layout);
        QCOMPARE(layout->count(), 2);
        QVERIFY(qobject_cast<QtCharts::QChartView *>(layout->itemAt(0)->widget()));
        const auto *box = qobject_cast<QDialogButtonBox *>(layout->itemAt(1)->widget());
        QVERIFY(box);
        QCOMPARE(box->buttons().size(), 3);
        QVERIFY(box->button(QDialogButtonBox::Ok));
        QVERIFY(box->button(QDialogButtonBox::Cancel));
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == QLatin1String("Load csv"))
                QCOMPARE(box->buttonRole(button), QDialogButtonBox::ResetRole);
        }
    }));
}

void ToolFlightPathDialogTest::okTakesThePoints()
{
    writeFile(path("p.csv"), "Three\n1;2;3.5;4\n-5;6\n");
    PollBench bench;
    bench.takeCalls();
    QVERIFY(takePath(bench, path("p.csv")));
    QCOMPARE(pathOf(bench), (QVector<QPointF>{{1, 2}, {3.5, 4}, {-5, 6}}));
    // Neither starts nor ends a run.
    QCOMPARE(bench.flightIndex(), 12);
    QCOMPARE(bench.takeCalls(), QStringList());
    // Accepting without loading keeps it.
    QVERIFY(inEditor(bench, [](QDialog *editor) { press(editor, QDialogButtonBox::Ok); }));
    QCOMPARE(pathOf(bench).size(), 3);
}

void ToolFlightPathDialogTest::cancelChangesNothing_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("cancel") << 0;
    QTest::newRow("close button of the window") << 1;
    QTest::newRow("escape") << 2;
}

void ToolFlightPathDialogTest::cancelChangesNothing()
{
    QFETCH(int, way);
    writeFile(path("p.csv"), "P\n1;2\n");
    PollBench bench;
    const QVector<QPointF> before = pathOf(bench);
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        QCOMPARE(seriesOf(editor)->count(), 1);
        if (way == 0)
            press(editor, QDialogButtonBox::Cancel);
        else if (way == 1)
            editor->close();
        else
            QTest::keyClick(editor, Qt::Key_Escape);
    }));
    QCOMPARE(pathOf(bench), before);
    QCOMPARE(bench.flightIndex(), 12);
}

void ToolFlightPathDialogTest::loadedPathIsShownWithItsTitle()
{
    writeFile(path("demo.csv"), "Demo\n1;2\n3;4;5;6\n#7;8\n9\n");
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("demo.csv")));
        QVERIFY(editor->isVisible());
        QCOMPARE(chartOf(editor)->title(), QStringLiteral("Demo\n"));
        QCOMPARE(seriesOf(editor)->pointsVector(), (QVector<QPointF>{{1, 2}, {3, 4}, {5, 6}}));
    }));
}

void ToolFlightPathDialogTest::secondFileReplacesTheFirst()
{
    writeFile(path("a.csv"), "A\n1;2;3;4\n");
    writeFile(path("b.txt"), "B\n5;6\n7;8;");
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("a.csv")));
        QVERIFY(loadFile(editor, path("b.txt")));
        QCOMPARE(chartOf(editor)->title(), QStringLiteral("B\n"));
        QCOMPARE(seriesOf(editor)->pointsVector(), (QVector<QPointF>{{5, 6}, {7, 8}}));
        press(editor, QDialogButtonBox::Ok);
    }));
    QCOMPARE(pathOf(bench).size(), 2);
}

void ToolFlightPathDialogTest::axesShowAllPoints_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QRectF>("range");
    const auto row = [](const char *name, const char *line, double left, double right,
                        double bottom, double top) {
        QTest::newRow(name) << QByteArray(line)
                            << QRectF(QPointF(left, bottom), QPointF(right, top));
    };
    row("a tenth around", "0;0;1000;500", -100, 1100, -50, 550);
    row("both signs", "-10;20;30;-40", -14, 34, -46, 26);
    row("positive does not reach the origin", "100;200;300;300", 80, 320, 190, 310);
    row("negative reaches the origin", "-10;-10;-20;-30", -22, 2, -33, 3);
    row("negative point alone", "-10;-20", -11, 1, -22, 2);
    row("vertical line", "5;0;5;10", 5, 5, -1, 11);
}

void ToolFlightPathDialogTest::axesShowAllPoints()
{
    QFETCH(QByteArray, line);
    QFETCH(QRectF, range);
    writeFile(path("p.csv"), "P\n" + line + '\n');
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        const auto near = [](double value, double expected) {
            return qAbs(value - expected) < 1e-9;
        };
        const Preview preview(editor);
        QVERIFY(near(preview.horizontal.first, range.left()));
        QVERIFY(near(preview.horizontal.second, range.right()));
        QVERIFY(near(preview.vertical.first, range.top()));
        QVERIFY(near(preview.vertical.second, range.bottom()));
        // Drawn without a complaint.
        editor->grab();
    }));
}

void ToolFlightPathDialogTest::hugeCoordinatesKeepTheAxesFinite()
{
    writeFile(path("p.csv"), "P\n1e308;-1e308\n-1.7e308;1.7e308\n");
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        const Preview preview(editor);
        QCOMPARE(preview.points.size(), 2);
        for (const auto &range : {preview.horizontal, preview.vertical}) {
            QVERIFY(qIsFinite(range.first));
            QVERIFY(qIsFinite(range.second));
            QVERIFY(qIsFinite(range.second - range.first));
            // They have followed the points as far as an axis goes.
            QVERIFY(range.first < -1e307);
            QVERIFY(range.second > 1e307);
        }
    }));
}

void ToolFlightPathDialogTest::fileWithoutPointsLeavesAnEmptyPreview_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("title") << QByteArray("T\n") << QStringLiteral("T\n");
    QTest::newRow("comments") << QByteArray("T\n#1;2\n") << QStringLiteral("T\n");
}

void ToolFlightPathDialogTest::fileWithoutPointsLeavesAnEmptyPreview()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, title);
    writeFile(path("p.csv"), bytes);
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        const Preview before(editor);
        QVERIFY(loadFile(editor, path("p.csv")));
        const Preview after(editor);
        QCOMPARE(after.title, title);
        QCOMPARE(after.points.size(), 0);
        QVERIFY(after.horizontal == before.horizontal);
        QVERIFY(after.vertical == before.vertical);
        editor->grab();
        press(editor, QDialogButtonBox::Ok);
    }));
    QCOMPARE(pathOf(bench).size(), 0);
}

void ToolFlightPathDialogTest::fileDialogIsSetUpForPaths()
{
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            QCOMPARE(files->parent(), bench.tool());
            QCOMPARE(files->windowTitle(), QStringLiteral("Open plots"));
            QCOMPARE(files->nameFilters(), QStringList{QStringLiteral("*.csv *.txt")});
            QCOMPARE(files->acceptMode(), QFileDialog::AcceptOpen);
            QCOMPARE(files->fileMode(), QFileDialog::ExistingFile);
        }));
    }));
}

void ToolFlightPathDialogTest::fileDialogBeginsInTheRememberedFolder()
{
    AppSettings().setValue(folderKey, folder->path());
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            QCOMPARE(files->directory().absolutePath(), QDir(folder->path()).absolutePath());
        }));
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathDialogTest::folderOfTheFileIsRemembered()
{
    writeFile(path("p.csv"), "P\n1;2\n");
    PollBench bench;
    // As soon as it is loaded, even when the dialog is cancelled then.
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathDialogTest::currentFolderIsForgotten()
{
    writeFile(path("p.csv"), "P\n1;2\n");
    AppSettings().setValue(folderKey, QStringLiteral("/elsewhere"));
    QVERIFY(QDir::setCurrent(folder->path()));
    PollBench bench;
    QVERIFY(takePath(bench, path("p.csv")));
    QVERIFY(!AppSettings().contains(folderKey));
}

void ToolFlightPathDialogTest::cancelledFileDialogChangesNothing()
{
    AppSettings().setValue(folderKey, folder->path());
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        const Preview before(editor);
        QVERIFY(inFileDialog(editor, [](QFileDialog *files) {
            QTest::mouseClick(standardButton(files, QDialogButtonBox::Cancel), Qt::LeftButton);
        }));
        QVERIFY(editor->isVisible());
        QVERIFY(Preview(editor) == before);
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathDialogTest::unreadableFileChangesNothing_data()
{
    QTest::addColumn<bool>("isGone");
    QTest::newRow("gone as the dialog closes") << true;
    QTest::newRow("no permission") << false;
}

void ToolFlightPathDialogTest::unreadableFileChangesNothing()
{
    QFETCH(bool, isGone);
    if (!isGone && geteuid() == 0)
        QSKIP("root may read every file");
    writeFile(path("p.csv"), "P\n1;2\n");
    if (!isGone)
        QVERIFY(QFile::setPermissions(path("p.csv"), QFileDevice::WriteOwner));
    AppSettings().setValue(folderKey, QStringLiteral("/elsewhere"));
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        const Preview before(editor);
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path("p.csv"));
            // The dialog is content with the file, and then a folder takes its place.
            connect(files, &QFileDialog::fileSelected, editor, [&] {
                if (isGone)
                    QVERIFY(QFile::remove(path("p.csv")) && QDir().mkdir(path("p.csv")));
            });
            QTest::mouseClick(standardButton(files, QDialogButtonBox::Open), Qt::LeftButton);
        }));
        QVERIFY(Preview(editor) == before);
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), QStringLiteral("/elsewhere"));
}

void ToolFlightPathDialogTest::toolDeletedWithTheDialogOpenIsSurvived()
{
    PollBench bench;
    QPointer<QDialog> seen;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        seen = editor;
        bench.deleteTool();
    }));
    QVERIFY(!seen);
    QVERIFY(!bench.tool());
}

void ToolFlightPathDialogTest::toolDeletedAsTheDialogIsAcceptedIsSurvived()
{
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        // Behind the tool's own handler, before the dialog's event loop has returned.
        connect(editor, &QDialog::accepted, [&] { bench.deleteTool(); });
        press(editor, QDialogButtonBox::Ok);
    }));
    QVERIFY(!bench.tool());
}

void ToolFlightPathDialogTest::toolDeletedWithTheFileDialogOpenIsSurvived()
{
    AppSettings().setValue(folderKey, folder->path());
    PollBench bench;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *) { bench.deleteTool(); }));
    }));
    QVERIFY(!bench.tool());
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

QTEST_MAIN(ToolFlightPathDialogTest)
#include "tst_tool_flight_path_dialog.moc"
