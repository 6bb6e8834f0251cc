#include "BrowserRig.h"

#include "XmlProductIC.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QTest>

namespace {

constexpr int mostReadsPerTick = 8;

} // namespace

class RegisterBrowserReadsTest : public BrowserRig
{
    Q_OBJECT

private slots:
    void aTickReadsAFewRegistersInTurn();
    void readsStayOutOfTheRequestLog();
    void theRateSetsTheInterval_data();
    void theRateSetsTheInterval();
    void hidingPausesTheReads();
    void theCheckBoxPausesTheReads();
    void aWriteOnlyRegisterIsNeverRead();
    void aSilentModuleLeavesTheLastValueGreyed();
    void onlyWhatIsShownIsRead();

    void writesFromElsewhereShowAtOnce();
    void writesToAnotherChipDoNotShow();
};

void RegisterBrowserReadsTest::aTickReadsAFewRegistersInTurn()
{
    show();
    QStringList calls = link.takeCalls();
    QVERIFY(!calls.isEmpty());
    int ticks = 1;
    while (calls.size() < readableCount) {
        QVERIFY(deliverTimer(tool));
        const QStringList more = link.takeCalls();
        QVERIFY(!more.isEmpty() && more.size() <= mostReadsPerTick);
        calls << more;
        ++ticks;
    }
    QCOMPARE(ticks, 2);
    QCOMPARE(calls.size(), readableCount);
    QCOMPARE(QStringList(calls).removeDuplicates(), 0);
    QCOMPARE(calls.filter(QStringLiteral("read ")).size(), readableCount);
    QVERIFY(deliverTimer(tool));
    QCOMPARE(link.takeCalls().first(), calls.first());
}

void RegisterBrowserReadsTest::readsStayOutOfTheRequestLog()
{
    show();
    QVERIFY(!link.modes.isEmpty());
    QVERIFY(!link.modes.contains(false));
    QVERIFY(!module->isCircularMode());
}

void RegisterBrowserReadsTest::theRateSetsTheInterval_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<int>("interval");
    // Two ticks for the ten registers.
    QTest::newRow("lowest") << "0,5" << 1000;
    QTest::newRow("preset") << "2" << 250;
    QTest::newRow("highest") << "20" << 25;
}

void RegisterBrowserReadsTest::theRateSetsTheInterval()
{
    QFETCH(QString, rate);
    show();
    auto *const box = tool->findChild<QDoubleSpinBox *>(QStringLiteral("spRate"));
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, rate);
    QTest::keyClick(box, Qt::Key_Return);
    QTEST(timerInterval(tool), "interval");
}

void RegisterBrowserReadsTest::hidingPausesTheReads()
{
    show();
    QVERIFY(timerInterval(tool) > 0);
    link.takeCalls();
    tool->hidePlugin();
    QCOMPARE(timerInterval(tool), -1);
    // What changes what is to be read does not wake it up.
    tool->findChild<QLineEdit *>(QStringLiteral("leSearch"))->setText(QStringLiteral("SPEED"));
    import(listOf({0x10, 0x11}));
    QCOMPARE(timerInterval(tool), -1);
    QCOMPARE(link.takeCalls(), QStringList());
    tool->showPlugin();
    QVERIFY(timerInterval(tool) > 0);
    QCOMPARE(link.takeCalls().size(), 2);
}

void RegisterBrowserReadsTest::theCheckBoxPausesTheReads()
{
    show();
    auto *const live = tool->findChild<QCheckBox *>(QStringLiteral("cbLive"));
    QVERIFY(live->isChecked());
    QTest::mouseClick(live, Qt::LeftButton, Qt::NoModifier, QPoint(8, live->height() / 2));
    QVERIFY(!live->isChecked());
    QCOMPARE(timerInterval(tool), -1);
    link.takeCalls();
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    QCOMPARE(link.takeCalls(), QStringList());
    QTest::mouseClick(live, Qt::LeftButton, Qt::NoModifier, QPoint(8, live->height() / 2));
    QVERIFY(timerInterval(tool) > 0);
}

void RegisterBrowserReadsTest::aWriteOnlyRegisterIsNeverRead()
{
    show();
    round();
    QCOMPARE(link.takeCalls().filter(QStringLiteral("0x02")), QStringList());
    enter(table(), cell(QStringLiteral("TRIGGER"), Decimal), QStringLiteral("9"));
    QCOMPARE(takeWrites(), QStringList{QStringLiteral("write 0x02 m0 9")});
    QCOMPARE(text(QStringLiteral("TRIGGER"), Decimal), QStringLiteral("–"));
    QCOMPARE(text(QStringLiteral("TRIGGER"), Hexadecimal), QStringLiteral("–"));
}

void RegisterBrowserReadsTest::aSilentModuleLeavesTheLastValueGreyed()
{
    link.values.insert(0x13, 1234);
    show();
    round();
    link.failReads = true;
    link.takeCalls();
    QVERIFY(deliverTimer(tool));
    // The first request without an answer is the tick's last.
    QCOMPARE(link.takeCalls().size(), 1);
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("1234"));
    QCOMPARE(text(QStringLiteral("SPEED"), State), QStringLiteral("no answer"));
    QVERIFY(isGrey(QStringLiteral("SPEED")));
    link.failReads = false;
    round();
    QCOMPARE(text(QStringLiteral("SPEED"), State), QString());
    QVERIFY(!isGrey(QStringLiteral("SPEED")));
}

void RegisterBrowserReadsTest::onlyWhatIsShownIsRead()
{
    show();
    QTest::keyClicks(tool->findChild<QLineEdit *>(QStringLiteral("leSearch")),
                     QStringLiteral("0x1"));
    link.takeCalls();
    QVERIFY(deliverTimer(tool));
    QStringList calls = link.takeCalls();
    calls.sort();
    QCOMPARE(calls, QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("read 0x11 m0"),
                                 QStringLiteral("read 0x13 m0")}));
}

void RegisterBrowserReadsTest::writesFromElsewhereShowAtOnce()
{
    QVERIFY(module->writeChannelRegister(reg("SPEED"), 0, 4321));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("4321"));
    QVERIFY(module->writeChannelRegister(reg("SPEED"), 1, 1));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QStringLiteral("1"));
    QCOMPARE(link.takeCalls().filter(QStringLiteral("read ")), QStringList());
}

void RegisterBrowserReadsTest::writesToAnotherChipDoNotShow()
{
    module->setProduct(2, makeProduct());
    QVERIFY(module->writeChannelRegister(
        module->getIcProduct(2)->getRegisterByName(QStringLiteral("SPEED"), true), 2, 4321));
    QCOMPARE(text(QStringLiteral("SPEED"), Decimal), QString());
}

QTEST_MAIN(RegisterBrowserReadsTest)
#include "tst_register_browser_reads.moc"
