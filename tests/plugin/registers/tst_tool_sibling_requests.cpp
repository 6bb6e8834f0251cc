#include "HeadlessPlatform.h"
#include "SiblingRig.h"

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
    SiblingRig rig;
    rig.show();
    Sibling browser(rig.key("browser"), browserName);
    rig.tool()->showPlugin();
    const int before = singleShots().size();
    QTest::mouseClick(rig.browser, Qt::LeftButton);
    QCOMPARE(rig.requests, QStringList{rig.key("browser")});
    QVERIFY(rig.allOpen && rig.allValid);
    QVERIFY(browser.values.isEmpty());

    const QList<SingleShot> waiting = singleShots();
    QCOMPARE(waiting.size(), before + 1);
    QCOMPARE(waiting.last().timer.interval, 100);
    QCOMPARE(waiting.last().timer.timerType, Qt::PreciseTimer);
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.types.at(0), &ExportTypes::RegisterList);
    QCOMPARE(browser.types.at(0)->name, QStringLiteral("RergisterList"));
    QCOMPARE(browser.values.at(0).type(), QVariant::List);
    QCOMPARE(browser.values.at(0), rig.browser->property("RegList"));
    QCOMPARE(browser.values.at(0).toList().size(), 9);
    QCOMPARE(browser.senders.at(0), static_cast<QObject *>(rig.tool()));
    QCOMPARE(rig.requests.size(), 1);
}

void ToolSiblingRequestsTest::everyClickExportsAgain()
{
    SiblingRig rig;
    Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    rig.browser->click();
    rig.browser->click();
    QVERIFY(browser.values.isEmpty());
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 2);
    QCOMPARE(rig.requests.size(), 2);
    rig.browser->click();
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 3);
    QCOMPARE(browser.values.at(0), browser.values.at(2));
}

void ToolSiblingRequestsTest::exportedListIsReadWhenItIsSent()
{
    SiblingRig rig;
    Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    rig.browser->click();
    const QVariantList changed{1u, 2u};
    rig.browser->setProperty("RegList", changed);
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.values.at(0).toList(), changed);
}

void ToolSiblingRequestsTest::exportWithoutAListIsAnEmptyList()
{
    RigGaps gaps;
    gaps.hasChip = false;
    SiblingRig rig(gaps);
    Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("browser -"));
    rig.browser->click();
    fireSingleShots();
    QTRY_COMPARE(browser.values.size(), 1);
    QCOMPARE(browser.values.at(0).type(), QVariant::List);
    QVERIFY(browser.values.at(0).toList().isEmpty());
}

void ToolSiblingRequestsTest::deletedToolExportsNothing()
{
    SiblingRig rig;
    Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    rig.browser->click();
    QVERIFY(!singleShots().isEmpty());
    rig.deleteTool();
    fireSingleShots();
    QTRY_VERIFY(singleShots().isEmpty());
    QVERIFY(browser.values.isEmpty());
}

void ToolSiblingRequestsTest::positionToolsAreBothOpened()
{
    SiblingRig rig;
    Sibling first(rig.key("p0"), positionName, 0);
    Sibling second(rig.key("p1"), positionName, 1);
    rig.call("initExternTools");
    rig.position->click();
    QCOMPARE(rig.requests, (QStringList{rig.key("p0"), rig.key("p1")}));
    QVERIFY(rig.allOpen && rig.allValid);
    QVERIFY(singleShots().isEmpty());
    QVERIFY(first.values.isEmpty() && second.values.isEmpty());
}

void ToolSiblingRequestsTest::absentKeysAreAskedForAsEmpty()
{
    SiblingRig rig;
    const Sibling second(rig.key("p1"), positionName, 1);
    rig.call("initExternTools");
    QCOMPARE(rig.enabled(), QStringLiteral("- position"));
    QVERIFY(!rig.position->property("Key0").isValid());
    rig.position->click();
    QCOMPARE(rig.requests, (QStringList{QString(), rig.key("p1")}));
    QVERIFY(rig.allOpen && rig.allValid);

    rig.requests.clear();
    rig.browser->setEnabled(true);
    rig.browser->click();
    QCOMPARE(rig.requests, QStringList{QString()});
    fireSingleShots();
}

void ToolSiblingRequestsTest::keysAreReadFromTheClickedObject()
{
    SiblingRig rig;
    QPushButton other;
    other.setProperty("Key0", QStringLiteral("from 0"));
    other.setProperty("Key1", QStringLiteral("from 1"));
    connect(&other, SIGNAL(clicked()), rig.tool(), SLOT(on_btnShowPosition_clicked()));
    other.click();
    QCOMPARE(rig.requests, (QStringList{QStringLiteral("from 0"), QStringLiteral("from 1")}));
    other.disconnect();
    rig.requests.clear();
    connect(&other, SIGNAL(clicked()), rig.tool(), SLOT(on_btnShowRegister_clicked()));
    other.click();
    QCOMPARE(rig.requests, QStringList{QStringLiteral("from 0")});
    fireSingleShots();
}

void ToolSiblingRequestsTest::slotsCalledWithoutASenderAskForEmptyKeys()
{
    SiblingRig rig;
    Sibling browser(rig.key("browser"), browserName);
    rig.call("initExternTools");
    rig.call("on_btnShowRegister_clicked");
    QCOMPARE(rig.requests, QStringList{QString()});
    rig.call("on_btnShowPosition_clicked");
    QCOMPARE(rig.requests.size(), 3);
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
    SiblingRig rig;
    Sibling browser(rig.key("browser"), browserName);
    connect(rig.tool(), &PluginInterface::signalDeviceTreeOperation, this,
            [&rig] { rig.deleteTool(); });
    rig.widget<QAbstractButton>(button.constData())->click();
    QVERIFY(!rig.tool());
    QCOMPARE(rig.requests.size(), 1);
    fireSingleShots();
    QVERIFY(browser.values.isEmpty());
}

void ToolSiblingRequestsTest::buttonDeletedWhileAskingIsSurvived()
{
    SiblingRig rig;
    auto other = std::make_unique<QPushButton>();
    other->setProperty("Key0", QStringLiteral("from 0"));
    other->setProperty("Key1", QStringLiteral("from 1"));
    connect(other.get(), SIGNAL(clicked()), rig.tool(), SLOT(on_btnShowPosition_clicked()));
    connect(rig.tool(), &PluginInterface::signalDeviceTreeOperation, this,
            [&other] { other.reset(); });
    other->click();
    QVERIFY(!other);
    QCOMPARE(rig.requests, (QStringList{QStringLiteral("from 0"), QString()}));
}

QTEST_MAIN(ToolSiblingRequestsTest)
#include "tst_tool_sibling_requests.moc"
