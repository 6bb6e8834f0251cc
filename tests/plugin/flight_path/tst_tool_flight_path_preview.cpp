#include "FlightEditorRig.h"

#include <QGraphicsLayout>
#include <QtCharts/QLegend>

class ToolFlightPathPreviewTest : public FlightEditorRig
{
    Q_OBJECT

private slots:
    void previewShowsThePath();
    void loadedPathIsShownWithItsTitle();
    void secondFileReplacesTheFirst();
    void axesShowAllPoints_data();
    void axesShowAllPoints();
    void hugeCoordinatesKeepTheAxesFinite();
    void fileWithoutPointsLeavesAnEmptyPreview_data();
    void fileWithoutPointsLeavesAnEmptyPreview();
};

void ToolFlightPathPreviewTest::previewShowsThePath()
{
    PollRig rig;
    QVERIFY(inEditor(rig, [](QDialog *editor) {
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

void ToolFlightPathPreviewTest::loadedPathIsShownWithItsTitle()
{
    writeFile(path("demo.csv"), "Demo\n1;2\n3;4;5;6\n#7;8\n9\n");
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("demo.csv")));
        QVERIFY(editor->isVisible());
        QCOMPARE(chartOf(editor)->title(), QStringLiteral("Demo\n"));
        QCOMPARE(seriesOf(editor)->pointsVector(), (QVector<QPointF>{{1, 2}, {3, 4}, {5, 6}}));
    }));
}

void ToolFlightPathPreviewTest::secondFileReplacesTheFirst()
{
    writeFile(path("a.csv"), "A\n1;2;3;4\n");
    writeFile(path("b.txt"), "B\n5;6\n7;8;");
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("a.csv")));
        QVERIFY(loadFile(editor, path("b.txt")));
        QCOMPARE(chartOf(editor)->title(), QStringLiteral("B\n"));
        QCOMPARE(seriesOf(editor)->pointsVector(), (QVector<QPointF>{{5, 6}, {7, 8}}));
        press(editor, QDialogButtonBox::Ok);
    }));
    QCOMPARE(pathOf(rig).size(), 2);
}

void ToolFlightPathPreviewTest::axesShowAllPoints_data()
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

void ToolFlightPathPreviewTest::axesShowAllPoints()
{
    QFETCH(QByteArray, line);
    QFETCH(QRectF, range);
    writeFile(path("p.csv"), "P\n" + line + '\n');
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
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

void ToolFlightPathPreviewTest::hugeCoordinatesKeepTheAxesFinite()
{
    writeFile(path("p.csv"), "P\n1e308;-1e308\n-1.7e308;1.7e308\n");
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
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

void ToolFlightPathPreviewTest::fileWithoutPointsLeavesAnEmptyPreview_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("title") << QByteArray("T\n") << QStringLiteral("T\n");
    QTest::newRow("comments") << QByteArray("T\n#1;2\n") << QStringLiteral("T\n");
}

void ToolFlightPathPreviewTest::fileWithoutPointsLeavesAnEmptyPreview()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, title);
    writeFile(path("p.csv"), bytes);
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
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
    QCOMPARE(pathOf(rig).size(), 0);
}

QTEST_MAIN(ToolFlightPathPreviewTest)
#include "tst_tool_flight_path_preview.moc"
