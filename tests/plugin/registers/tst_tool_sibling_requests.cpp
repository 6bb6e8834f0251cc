#include "HeadlessPlatform.h"
#include "SiblingBench.h"

#include <QPushButton>
#include <QTest>

class ToolSiblingRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void browserIsOpenedAndSentTheList();
    void everyClickExportsAgain();
    void exportedListIsReadWhenItIsSent();
    void exportWithoutAListIsAnEmptyList();
    void deletedToolExportsNothing();
    void positionToolsAreBothOpened();
    void absentKeysAreAskedForAsEmpty();
    void keysAreReadFromTheClickedObject();
    void slotsCalledWithoutASenderAskForEmptyKeys();
    void toolDeletedWhileAskingIsSurvived_data();
    void toolDeletedWhileAskingIsSurvived();
    void buttonDeletedWhileAskingIsSurvived();
};

void ToolSiblingRequestsTest::browserIsOpenedAndSentTheList()
{
    SiblingBench bench;
    bench.show();
    Sibling browser(bench.key("browser"), browserName);
    bench.tool()->showPlugin();
    const int before = singleShots().size();
    QTest::mouseClick(bench.browser, Qt::LeftButton);
    QCOMPARE(bench.requests, QStringList{bench.key("browser")});
    QVERIFY(bench.allOpen && bench.allValid);
    QVERIFY(browser.values.isEmpty());

    const QList<SingleShot> waiting = singleShots();
    QCOMPARE(waiting.size(), before + 1);
    QCOMPARE(waiting.last().timer.interval, 100);
    QCOMPARE(waiting.last().timer.timerType, Qt::PreciseTimer);
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.types.at(0), &ExportTypes::RegisterList);
    QCOMPARE(browser.types.at(0)->name, QStringLiteral("RergisterList"));
    QCOMPARE(browser.values.at(0).type(), QVariant::List);
    QCOMPARE(browser.values.at(0), bench.browser->property("RegList"));
    QCOMPARE(browser.values.at(0).toList().size(), 9);
    QCOMPARE(browser.senders.at(0), static_cast<QObject *>(bench.tool()));
    QCOMPARE(bench.requests.size(), 1);
}

void ToolSiblingRequestsTest::everyClickExportsAgain()
{
    SiblingBench bench;
    Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    bench.browser->click();
    bench.browser->click();
    QVERIFY(browser.values.isEmpty());
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 2);
    QCOMPARE(bench.requests.size(), 2);
    bench.browser->click();
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 3);
    QCOMPARE(browser.values.at(0), browser.values.at(2));
}

void ToolSiblingRequestsTest::exportedListIsReadWhenItIsSent()
{
    SiblingBench bench;
    Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    bench.browser->click();
    const QVariantList changed{1u, 2u};
    bench.browser->setProperty("RegList", changed);
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.values.at(0).toList(), changed);
}

void ToolSiblingRequestsTest::exportWithoutAListIsAnEmptyList()
{
    BenchGaps gaps;
    gaps.hasChip = false;
    SiblingBench bench(gaps);
    Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("browser -"));
    bench.browser->click();
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.values.at(0).type(), QVariant::List);
    QVERIFY(browser.values.at(0).toList().isEmpty());
}

void ToolSiblingRequestsTest::deletedToolExportsNothing()
{
    SiblingBench bench;
    Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    bench.browser->click();
    QVERIFY(!singleShots().isEmpty());
    bench.deleteTool();
    fireSingleShots();
    QTRY_VERIFY(singleShots().isEmpty());
    QVERIFY(browser.values.isEmpty());
}

void ToolSiblingRequestsTest::positionToolsAreBothOpened()
{
    SiblingBench bench;
    Sibling first(bench.key("p0"), positionName, 0);
    Sibling second(bench.key("p1"), positionName, 1);
    bench.call("initExternTools");
    bench.position->click();
    QCOMPARE(bench.requests, (QStringList{bench.key("p0"), bench.key("p1")}));
    QVERIFY(bench.allOpen && bench.allValid);
    QVERIFY(singleShots().isEmpty());
    QVERIFY(first.values.isEmpty() && second.values.isEmpty());
}

void ToolSiblingRequestsTest::absentKeysAreAskedForAsEmpty()
{
    SiblingBench bench;
    const Sibling second(bench.key("p1"), positionName, 1);
    bench.call("initExternTools");
    QCOMPARE(bench.enabled(), QStringLiteral("- position"));
    QVERIFY(!bench.position->property("Key0").isValid());
    bench.position->click();
    QCOMPARE(bench.requests, (QStringList{QString(), bench.key("p1")}));
    QVERIFY(bench.allOpen && bench.allValid);

    bench.requests.clear();
    bench.browser->setEnabled(true);
    bench.browser->click();
    QCOMPARE(bench.requests, QStringList{QString()});
    fireSingleShots();
}

void ToolSiblingRequestsTest::keysAreReadFromTheClickedObject()
{
    SiblingBench bench;
    QPushButton other;
    other.setProperty("Key0", QStringLiteral("from 0"));
    other.setProperty("Key1", QStringLiteral("from 1"));
    connect(&other, SIGNAL(clicked()), bench.tool(), SLOT(on_btnShowPosition_clicked()));
    other.click();
    QCOMPARE(bench.requests, (QStringList{QStringLiteral("from 0"), QStringLiteral("from 1")}));
    other.disconnect();
    bench.requests.clear();
    connect(&other, SIGNAL(clicked()), bench.tool(), SLOT(on_btnShowRegister_clicked()));
    other.click();
    QCOMPARE(bench.requests, QStringList{QStringLiteral("from 0")});
    fireSingleShots();
}

void ToolSiblingRequestsTest::slotsCalledWithoutASenderAskForEmptyKeys()
{
    SiblingBench bench;
    Sibling browser(bench.key("browser"), browserName);
    bench.call("initExternTools");
    bench.call("on_btnShowRegister_clicked");
    QCOMPARE(bench.requests, QStringList{QString()});
    bench.call("on_btnShowPosition_clicked");
    QCOMPARE(bench.requests.size(), 3);
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 1);
}

void ToolSiblingRequestsTest::toolDeletedWhileAskingIsSurvived_data()
{
    QTest::addColumn<QByteArray>("button");

    QTest::newRow("register browser") << QByteArray("btnShowRegister");
    QTest::newRow("position mode") << QByteArray("btnShowPosition");
}

void ToolSiblingRequestsTest::toolDeletedWhileAskingIsSurvived()
{
    QFETCH(QByteArray, button);
    SiblingBench bench;
    Sibling browser(bench.key("browser"), browserName);
    connect(bench.tool(), &PluginInterface::signalDeviceTreeOperation, this,
            [&bench] { bench.deleteTool(); });
    bench.widget<QAbstractButton>(button.constData())->click();
    QVERIFY(!bench.tool());
    QCOMPARE(bench.requests.size(), 1);
    fireSingleShots();
    QVERIFY(browser.values.isEmpty());
}

void ToolSiblingRequestsTest::buttonDeletedWhileAskingIsSurvived()
{
    SiblingBench bench;
    auto other = std::make_unique<QPushButton>();
    other->setProperty("Key0", QStringLiteral("from 0"));
    other->setProperty("Key1", QStringLiteral("from 1"));
    connect(other.get(), SIGNAL(clicked()), bench.tool(), SLOT(on_btnShowPosition_clicked()));
    connect(bench.tool(), &PluginInterface::signalDeviceTreeOperation, this,
            [&other] { other.reset(); });
    other->click();
    QVERIFY(!other);
    QCOMPARE(bench.requests, (QStringList{QStringLiteral("from 0"), QString()}));
}

QTEST_MAIN(ToolSiblingRequestsTest)
#include "tst_tool_sibling_requests.moc"
