#include "EventWatch.h"
#include "FlightEditorRig.h"

#include "HostLocale.h"

#include <QVBoxLayout>

class ToolFlightPathDialogTest : public FlightEditorRig
{
    Q_OBJECT

private slots:
    void windowIsAsTheHostExpectsIt();
    void dialogIsGoneOnceItIsClosed();
    void localeIsTheHostsAgain();
    void buttonsStandBelowThePreview();
    void okTakesThePoints();
    void cancelChangesNothing_data();
    void cancelChangesNothing();

    void toolDeletedWithTheDialogOpenIsSurvived();
    void toolDeletedAsTheDialogIsAcceptedIsSurvived();
};

void ToolFlightPathDialogTest::windowIsAsTheHostExpectsIt()
{
    PollRig rig;
    // While a dialog is executed the attribute is off; it counts when the dialog comes up.
    bool isDeletedOnClose = false;
    const EventWatch watch([&](QObject *receiver, QEvent *event) {
        const auto *dialog = qobject_cast<QDialog *>(receiver);
        if (dialog && event->type() == QEvent::Show)
            isDeletedOnClose = isDeletedOnClose || dialog->testAttribute(Qt::WA_DeleteOnClose);
    });
    const QImage icon = menuEntry(rig, "Edit flight path")->icon().pixmap(16).toImage();
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QCOMPARE(editor->parent(), rig.tool());
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
    PollRig rig;
    QPointer<QDialog> seen;
    for (const auto which : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel}) {
        QVERIFY(inEditor(rig, [&](QDialog *editor) {
            seen = editor;
            press(editor, which);
        }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!seen);
    }
    QCOMPARE(rig.tool()->findChildren<QDialog *>().size(), 0);
}

void ToolFlightPathDialogTest::localeIsTheHostsAgain()
{
    PollRig rig;
    QLocale::setDefault(QLocale::c());
    QVERIFY(inEditor(rig, [](QDialog *) { QCOMPARE(QLocale(), curLocale); }));
    QCOMPARE(QLocale(), curLocale);
}

void ToolFlightPathDialogTest::buttonsStandBelowThePreview()
{
    PollRig rig;
    QVERIFY(inEditor(rig, [](QDialog *editor) {
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
    PollRig rig;
    rig.takeCalls();
    QVERIFY(takePath(rig, path("p.csv")));
    QCOMPARE(pathOf(rig), (QVector<QPointF>{{1, 2}, {3.5, 4}, {-5, 6}}));
    // Neither starts nor ends a run.
    QCOMPARE(rig.flightIndex(), 12);
    QCOMPARE(rig.takeCalls(), QStringList());
    // Accepting without loading keeps it.
    QVERIFY(inEditor(rig, [](QDialog *editor) { press(editor, QDialogButtonBox::Ok); }));
    QCOMPARE(pathOf(rig).size(), 3);
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
    PollRig rig;
    const QVector<QPointF> before = pathOf(rig);
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        QCOMPARE(seriesOf(editor)->count(), 1);
        if (way == 0)
            press(editor, QDialogButtonBox::Cancel);
        else if (way == 1)
            editor->close();
        else
            QTest::keyClick(editor, Qt::Key_Escape);
    }));
    QCOMPARE(pathOf(rig), before);
    QCOMPARE(rig.flightIndex(), 12);
}

void ToolFlightPathDialogTest::toolDeletedWithTheDialogOpenIsSurvived()
{
    PollRig rig;
    QPointer<QDialog> seen;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        seen = editor;
        rig.deleteTool();
    }));
    QVERIFY(!seen);
    QVERIFY(!rig.tool());
}

void ToolFlightPathDialogTest::toolDeletedAsTheDialogIsAcceptedIsSurvived()
{
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        // Before the dialog's event loop has returned, but not in accepted(): the dialog has one
        // more signal to emit then, and does not look whether it is still there.
        connect(editor, &QDialog::finished, [&] { rig.deleteTool(); });
        press(editor, QDialogButtonBox::Ok);
    }));
    QVERIFY(!rig.tool());
}

QTEST_MAIN(ToolFlightPathDialogTest)
#include "tst_tool_flight_path_dialog.moc"
