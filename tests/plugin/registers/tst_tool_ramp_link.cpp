#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "RampRig.h"
#include "RegisterRig.h"

#include "XmlProductIC.h"
#include "XmlValueRegister.h"

#include <QTest>

class ToolRampLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void settingsAreReadInOrder_data();
    void settingsAreReadInOrder();
    void unusedStagesAreNotLookedAt_data();
    void unusedStagesAreNotLookedAt();
    void zeroSettingsAreListed_data();
    void zeroSettingsAreListed();
    void exampleToolTipReadsAsItShould();
    void negativeSettingsAreNotZero();
    void marksAreClearedWhenNothingIsZero();
    void marksAreClearedBeforeTheyAreSet();
    void missingRegistersCountAsZero_data();
    void missingRegistersCountAsZero();
    void registersThatAreGoneCountAsZero_data();
    void registersThatAreGoneCountAsZero();
    void hiddenRegistersCountAsZero();
    void failedReadsCountAsZero();
    void toolWithoutChipListsWhatAMoveNeeds_data();
    void toolWithoutChipListsWhatAMoveNeeds();
    void checkNeverWrites();
};

void ToolRampLinkTest::settingsAreReadInOrder_data()
{
    QTest::addColumn<int>("motor");

    QTest::newRow("first motor") << 0;
    QTest::newRow("second motor") << 1;
    QTest::newRow("last motor") << 255;
}

void ToolRampLinkTest::settingsAreReadInOrder()
{
    QFETCH(int, motor);
    RampRig rig(static_cast<unsigned char>(motor));
    QCOMPARE(rig.check(), readsOfAll(motor));
}

void ToolRampLinkTest::unusedStagesAreNotLookedAt_data()
{
    QTest::addColumn<int>("velocity");
    QTest::addColumn<bool>("isUsed");

    QTest::newRow("zero") << 0 << false;
    QTest::newRow("negative") << -1 << false;
    QTest::newRow("most negative") << INT_MIN << false;
    QTest::newRow("one") << 1 << true;
}

void ToolRampLinkTest::unusedStagesAreNotLookedAt()
{
    QFETCH(int, velocity);
    QFETCH(bool, isUsed);
    const QStringList prefixes{QStringLiteral("M0_"), QStringLiteral("M1_")};
    for (int axis = 0; axis < 2; ++axis) {
        for (const QString &stage : {QStringLiteral("1"), QStringLiteral("2")}) {
            RampRig rig;
            const QString &prefix = prefixes.at(axis);
            rig.setRegister(prefix + QLatin1Char('V') + stage, velocity);
            const QString acceleration = prefix + QLatin1Char('A') + stage;
            rig.setRegister(acceleration, 0);
            QStringList reads = readsOfAll();
            if (!isUsed)
                reads.removeAll(QStringLiteral("read %1 m0").arg(acceleration));
            QCOMPARE(rig.check(), reads);
            if (!isUsed) {
                QVERIFY(rig.isUnmarked());
                continue;
            }
            QVERIFY(axis == 0 ? rig.isMarked({acceleration}, {})
                              : rig.isMarked({}, {acceleration}));
        }
    }
}

void ToolRampLinkTest::zeroSettingsAreListed_data()
{
    QTest::addColumn<QString>("zeros");
    QTest::addColumn<QString>("m0");
    QTest::addColumn<QString>("m1");

    const auto row = [](const char *title, const char *zeros, const char *m0, const char *m1) {
        QTest::newRow(title) << QString::fromLatin1(zeros) << QString::fromLatin1(m0)
                             << QString::fromLatin1(m1);
    };
    row("M0_VMAX", "M0_VMAX", "M0_VMAX", "");
    row("M1_VMAX", "M1_VMAX", "", "M1_VMAX");
    row("M0_AMAX", "M0_AMAX", "M0_AMAX", "");
    row("M1_AMAX", "M1_AMAX", "", "M1_AMAX");
    row("M0_DMAX", "M0_DMAX", "M0_DMAX", "");
    row("M1_DMAX", "M1_DMAX", "", "M1_DMAX");
    row("axis 0 alone", "M0_DMAX M0_AMAX M0_VMAX", "M0_VMAX M0_AMAX M0_DMAX", "");
    row("axis 0 without its velocity", "M0_DMAX M0_AMAX", "M0_AMAX M0_DMAX", "");
    row("axis 1 alone", "M1_A2 M1_A1 M1_DMAX", "", "M1_DMAX M1_A1 M1_A2");
    row("one of each axis", "M0_VMAX M1_A1", "M0_VMAX", "M1_A1");
    row("everything that counts",
        "M0_VMAX M0_AMAX M0_DMAX M0_A1 M0_A2 M1_VMAX M1_AMAX M1_DMAX M1_A1 M1_A2",
        "M0_VMAX M0_AMAX M0_DMAX M0_A1 M0_A2", "M1_VMAX M1_AMAX M1_DMAX M1_A1 M1_A2");
    row("decelerations of the stages do not count", "M0_D1 M0_D2 M1_D1 M1_D2", "", "");
    row("stages that are not in use do not count", "M0_V1 M0_A1 M1_V2 M1_A2", "", "");
    row("mode and positions do not count", "RAMPMODE M0_XTARGET M1_XACTUAL M0_VACTUAL", "", "");
}

void ToolRampLinkTest::zeroSettingsAreListed()
{
    QFETCH(QString, zeros);
    QFETCH(QString, m0);
    QFETCH(QString, m1);
    RampRig rig;
    for (const QString &name : words(zeros))
        rig.setRegister(name, 0);
    rig.check();
    if (m0.isEmpty() && m1.isEmpty())
        QVERIFY(rig.isUnmarked());
    else
        QVERIFY2(rig.isMarked(words(m0), words(m1)), qPrintable(rig.button->toolTip()));
}

void ToolRampLinkTest::exampleToolTipReadsAsItShould()
{
    RampRig rig;
    rig.setRegister(QStringLiteral("M0_VMAX"), 0);
    rig.setRegister(QStringLiteral("M1_A1"), 0);
    rig.check();
    QCOMPARE(rig.button->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX\n\nM1_A1"));
    QCOMPARE(rig.button->description(), descriptionText);
    QCOMPARE(rig.button->styleSheet(), redBorder);
}

void ToolRampLinkTest::negativeSettingsAreNotZero()
{
    RampRig rig;
    for (const char *name : {"M0_VMAX", "M1_VMAX", "M0_AMAX", "M1_DMAX", "M0_A1", "M1_A2"})
        rig.setRegister(QLatin1String(name), -5);
    rig.check();
    QVERIFY(rig.isUnmarked());
}

void ToolRampLinkTest::marksAreClearedWhenNothingIsZero()
{
    RampRig rig;
    rig.button->setToolTip(QStringLiteral("left over"));
    rig.button->setDescription(QStringLiteral("left over"));
    rig.button->setStyleSheet(QStringLiteral("QCommandLinkButton{border: 1px solid blue}"));
    rig.check();
    QVERIFY(rig.isUnmarked());
    rig.setRegister(QStringLiteral("M1_AMAX"), 0);
    rig.check();
    QVERIFY(rig.isMarked({}, {QStringLiteral("M1_AMAX")}));
    rig.setRegister(QStringLiteral("M1_AMAX"), 7);
    rig.check();
    QVERIFY(rig.isUnmarked());
}

void ToolRampLinkTest::marksAreClearedBeforeTheyAreSet()
{
    RampRig rig;
    rig.setRegister(QStringLiteral("M0_AMAX"), 0);
    rig.show();
    QStringList steps;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        if (receiver != rig.button)
            return;
        const auto has = [](const QString &text) { return text.isEmpty() ? "-" : "x"; };
        const QString state =
            QStringLiteral(" %1%2%3").arg(QLatin1String(has(rig.button->toolTip())),
                                          QLatin1String(has(rig.button->description())),
                                          QLatin1String(has(rig.button->styleSheet())));
        if (event->type() == QEvent::ToolTipChange)
            steps << QStringLiteral("tip") + state;
        else if (event->type() == QEvent::StyleChange)
            steps << QStringLiteral("style") + state;
    });
    rig.check();
    // Each with what is set by then of tool tip, description and style sheet.
    QCOMPARE(steps, (QStringList{QStringLiteral("style xx-"), QStringLiteral("tip ---"),
                                 QStringLiteral("tip x--"), QStringLiteral("style xxx")}));
}

void ToolRampLinkTest::missingRegistersCountAsZero_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("alsoUnread");

    for (const char *name : {"VMAX", "AMAX", "DMAX", "A1", "A2"}) {
        QTest::addRow("M0_%s", name) << QStringLiteral("M0_") + QLatin1String(name) << QString();
        QTest::addRow("M1_%s", name) << QStringLiteral("M1_") + QLatin1String(name) << QString();
    }
    QTest::newRow("M0_V1") << QStringLiteral("M0_V1") << QStringLiteral("M0_A1");
    QTest::newRow("M1_V2") << QStringLiteral("M1_V2") << QStringLiteral("M1_A2");
}

void ToolRampLinkTest::missingRegistersCountAsZero()
{
    QFETCH(QString, name);
    QFETCH(QString, alsoUnread);
    RigGaps gaps;
    gaps.registers << name;
    RampRig rig(0, gaps);
    QStringList reads = readsOfAll();
    reads.removeAll(QStringLiteral("read %1 m0").arg(name));
    reads.removeAll(QStringLiteral("read %1 m0").arg(alsoUnread));
    QCOMPARE(rig.check(), reads);
    // A stage without a velocity is not in use.
    if (!alsoUnread.isEmpty())
        QVERIFY(rig.isUnmarked());
    else
        QVERIFY(name.startsWith(QLatin1String("M0")) ? rig.isMarked({name}, {})
                                                     : rig.isMarked({}, {name}));
}

void ToolRampLinkTest::registersThatAreGoneCountAsZero_data()
{
    missingRegistersCountAsZero_data();
}

void ToolRampLinkTest::registersThatAreGoneCountAsZero()
{
    QFETCH(QString, name);
    QFETCH(QString, alsoUnread);
    RampRig rig;
    rig.check();
    QVERIFY(rig.isUnmarked());
    delete rig.module()->getIcProduct(0)->getRegisterByName(name, true);
    QVERIFY(rig.check().filter(name).isEmpty());
    QCOMPARE(rig.isUnmarked(), !alsoUnread.isEmpty());
    QCOMPARE(rig.button->toolTip().endsWith(name), alsoUnread.isEmpty());
}

void ToolRampLinkTest::hiddenRegistersCountAsZero()
{
    OwnChip chip;
    chip.add(2, "M0_VMAX");
    chip.add(4, "M0_AMAX", false);
    chip.add(5, "M0_DMAX");
    for (const unsigned int address : {2u, 4u, 5u})
        chip.link.values.insert(address, 1000);
    QWidget *tool = chip.makeTool();
    chip.tool->showPlugin();
    const auto *button = tool->findChild<QCommandLinkButton *>(QStringLiteral("btnShowPosition"));
    QCOMPARE(button->toolTip(), toolTipFor({QStringLiteral("M0_AMAX")},
                                           words(QStringLiteral("M1_VMAX M1_AMAX M1_DMAX"))));
}

void ToolRampLinkTest::failedReadsCountAsZero()
{
    RampRig rig;
    rig.link.failReads = true;
    QStringList reads = readsOfAll();
    reads.erase(std::remove_if(reads.begin(), reads.end(),
                               [](const QString &read) {
                                   return read.contains(QLatin1String("_A1")) ||
                                          read.contains(QLatin1String("_A2"));
                               }),
                reads.end());
    QCOMPARE(rig.check(), reads);
    QVERIFY(rig.isMarked(words(QStringLiteral("M0_VMAX M0_AMAX M0_DMAX")),
                         words(QStringLiteral("M1_VMAX M1_AMAX M1_DMAX"))));
}

void ToolRampLinkTest::toolWithoutChipListsWhatAMoveNeeds_data()
{
    QTest::addColumn<bool>("hasModule");

    QTest::newRow("module without a chip") << true;
    QTest::newRow("no module") << false;
}

void ToolRampLinkTest::toolWithoutChipListsWhatAMoveNeeds()
{
    QFETCH(bool, hasModule);
    RigGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    RampRig rig(0, gaps);
    if (hasModule) {
        rig.tellWritten(ToolRig::address(QStringLiteral("M0_VMAX")));
        QVERIFY(rig.isUnmarked());
    }
    QVERIFY(rig.check().isEmpty());
    QVERIFY(rig.isMarked(words(QStringLiteral("M0_VMAX M0_AMAX M0_DMAX")),
                         words(QStringLiteral("M1_VMAX M1_AMAX M1_DMAX"))));
}

void ToolRampLinkTest::checkNeverWrites()
{
    RampRig rig;
    rig.setRegister(QStringLiteral("M0_VMAX"), 0);
    rig.takeCalls();
    rig.tool()->showPlugin();
    rig.tellWritten(ToolRig::address(QStringLiteral("M1_D2")));
    QVERIFY(rig.takeWrites().isEmpty());
    QVERIFY(rig.button->property("NewPt").isNull());
}

QTEST_MAIN(ToolRampLinkTest)
#include "tst_tool_ramp_link.moc"
