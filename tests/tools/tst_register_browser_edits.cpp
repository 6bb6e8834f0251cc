#include "BrowserRig.h"

#include <QLineEdit>
#include <QTableView>
#include <QTest>

class RegisterBrowserEditsTest : public BrowserRig
{
    Q_OBJECT

private slots:
    void anEditWritesTheRegister_data();
    void anEditWritesTheRegister();
    void aRefusedEditWritesNothing_data();
    void aRefusedEditWritesNothing();
    void anUnchangedEditorWritesNothing();
    void typingIsNotDisturbedByReads();
    void aReadOnlyRegisterCannotBeEdited();
    void aWriteWithoutAnswerIsReported();

    void aFieldEditLeavesTheOtherBits();
    void whatTheChipKeepsOfAFieldIsShown();
    void aFieldOutOfRangeIsRefused();
};

void RegisterBrowserEditsTest::anEditWritesTheRegister_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("written");
    QTest::newRow("decimal") << int(Decimal) << "-12"
                             << "write 0x11 m0 -12";
    QTest::newRow("hexadecimal in the decimal column") << int(Decimal) << "0x1f"
                                                       << "write 0x11 m0 31";
    QTest::newRow("hexadecimal") << int(Hexadecimal) << "0xFF"
                                 << "write 0x11 m0 -1";
    QTest::newRow("decimal in the hexadecimal column") << int(Hexadecimal) << "17"
                                                       << "write 0x11 m0 17";
}

void RegisterBrowserEditsTest::anEditWritesTheRegister()
{
    QFETCH(int, column);
    QFETCH(QString, entered);
    QFETCH(QString, written);
    show();
    enter(table(), cell(QStringLiteral("OFFSET"), column), entered);
    QCOMPARE(takeWrites(), QStringList{written});
    QCOMPARE(text(QStringLiteral("OFFSET"), Decimal), written.section(QLatin1Char(' '), -1));
    QCOMPARE(status(), QStringLiteral("OFFSET is written."));
}

void RegisterBrowserEditsTest::aRefusedEditWritesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("message");
    QTest::newRow("no number") << "OFFSET"
                               << "fast"
                               << "OFFSET: \"fast\" is not a number";
    QTest::newRow("beyond the field") << "OFFSET"
                                      << "128"
                                      << "allowed is -128 to 127";
    QTest::newRow("beyond the register's limits") << "SPEED"
                                                  << "5001"
                                                  << "allowed is 0 to 5000";
    QTest::newRow("negative") << "SPEED"
                              << "-1"
                              << "allowed is 0 to 5000";
    QTest::newRow("nothing") << "SPEED"
                             << ""
                             << "is not a number";
}

void RegisterBrowserEditsTest::aRefusedEditWritesNothing()
{
    QFETCH(QString, name);
    QFETCH(QString, entered);
    QFETCH(QString, message);
    link.values.insert(0x11, 3);
    link.values.insert(0x13, 3);
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(name, Decimal));
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("3"));
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, entered);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QVERIFY2(status().contains(message), qPrintable(status()));
    QCOMPARE(takeWrites(), QStringList());
    QCOMPARE(text(name, Decimal), QStringLiteral("3"));
}

void RegisterBrowserEditsTest::anUnchangedEditorWritesNothing()
{
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(QStringLiteral("SPEED"), Decimal));
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QCOMPARE(takeWrites(), QStringList());
    QCOMPARE(status(), QString());
}

void RegisterBrowserEditsTest::typingIsNotDisturbedByReads()
{
    show();
    round();
    QLineEdit *const editor = openEditor(table(), cell(QStringLiteral("SPEED"), Decimal));
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("42"));
    link.values.insert(0x13, 777);
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("777"));
    QCOMPARE(editor->text(), QStringLiteral("42"));
    link.takeCalls();
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x13 m0 42")});
}

void RegisterBrowserEditsTest::aReadOnlyRegisterCannotBeEdited()
{
    show();
    QVERIFY(!openEditor(table(), cell(QStringLiteral("PLACE"), Decimal)));
    QVERIFY(!openEditor(table(), cell(QStringLiteral("SPEED"), Name)));
    QVERIFY(!openEditor(table("tvFields"), table("tvFields")->model()->index(0, Bits)));
}

void RegisterBrowserEditsTest::aWriteWithoutAnswerIsReported()
{
    show();
    round();
    link.failWrites = true;
    enter(table(), cell(QStringLiteral("SPEED"), Decimal), QStringLiteral("5"));
    QVERIFY2(status().contains(QStringLiteral("SPEED: no answer")), qPrintable(status()));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("0"));
}

void RegisterBrowserEditsTest::aFieldEditLeavesTheOtherBits()
{
    QVERIFY(module->writeChannelRegister(reg("CONFIG"), 0, 0xFE03));
    show();
    round();
    tool->hidePlugin();
    link.takeCalls();
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(1, Value), QStringLiteral("-1"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("write 0x05 m0 65283"), QStringLiteral("read 0x05 m0")}));
    QCOMPARE(text(QStringLiteral("CONFIG"), Hexadecimal), QStringLiteral("0x0000FF03"));
    QVERIFY2(status().contains(QStringLiteral("CFG_HIGH")), qPrintable(status()));
}

void RegisterBrowserEditsTest::whatTheChipKeepsOfAFieldIsShown()
{
    show();
    round();
    tool->hidePlugin();
    link.keptBits = 0x0FF3;
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(0, Value), QStringLiteral("7"));
    QCOMPARE(status(), QStringLiteral("CFG_LOW is written and reads 3."));
    QCOMPARE(text(QStringLiteral("CONFIG"), Decimal), QStringLiteral("3"));
}

void RegisterBrowserEditsTest::aFieldOutOfRangeIsRefused()
{
    show();
    table()->setCurrentIndex(cell(QStringLiteral("CONFIG"), Name));
    enter(table("tvFields"), table("tvFields")->model()->index(0, Value), QStringLiteral("16"));
    QVERIFY2(status().contains(QStringLiteral("CFG_LOW: 16 is out of range; allowed is 0 to 15")),
             qPrintable(status()));
    QCOMPARE(takeWrites(), QStringList());
}

QTEST_MAIN(RegisterBrowserEditsTest)
#include "tst_register_browser_edits.moc"
