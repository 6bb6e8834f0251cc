#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "RampBench.h"
#include "RegisterBench.h"

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
    RampBench bench(static_cast<unsigned char>(motor));
    QCOMPARE(bench.check(), readsOfAll(motor));
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
            RampBench bench;
            const QString &prefix = prefixes.at(axis);
            bench.setRegister(prefix + QLatin1Char('V') + stage, velocity);
            const QString acceleration = prefix + QLatin1Char('A') + stage;
            bench.setRegister(acceleration, 0);
            QStringList reads = readsOfAll();
            if (!isUsed)
                reads.removeAll(QStringLiteral("read %1 m0").arg(acceleration));
            QCOMPARE(bench.check(), reads);
            if (!isUsed) {
                QVERIFY(bench.isUnmarked());
                continue;
            }
            QVERIFY(axis == 0 ? bench.isMarked({acceleration}, {})
                              : bench.isMarked({}, {acceleration}));
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
    RampBench bench;
    for (const QString &name : words(zeros))
        bench.setRegister(name, 0);
    bench.check();
    if (m0.isEmpty() && m1.isEmpty())
        QVERIFY(bench.isUnmarked());
    else
        QVERIFY2(bench.isMarked(words(m0), words(m1)), qPrintable(bench.button->toolTip()));
}

void ToolRampLinkTest::exampleToolTipReadsAsItShould()
{
    RampBench bench;
    bench.setRegister(QStringLiteral("M0_VMAX"), 0);
    bench.setRegister(QStringLiteral("M1_A1"), 0);
    bench.check();
    QCOMPARE(bench.button->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX\n\nM1_A1"));
    QCOMPARE(bench.button->description(), descriptionText);
    QCOMPARE(bench.button->styleSheet(), redBorder);
}

void ToolRampLinkTest::negativeSettingsAreNotZero()
{
    RampBench bench;
    for (const char *name : {"M0_VMAX", "M1_VMAX", "M0_AMAX", "M1_DMAX", "M0_A1", "M1_A2"})
        bench.setRegister(QLatin1String(name), -5);
    bench.check();
    QVERIFY(bench.isUnmarked());
}

void ToolRampLinkTest::marksAreClearedWhenNothingIsZero()
{
    RampBench bench;
    bench.button->setToolTip(QStringLiteral("left over"));
    bench.button->setDescription(QStringLiteral("left over"));
    bench.button->setStyleSheet(QStringLiteral("QCommandLinkButton{border: 1px solid blue}"));
    bench.check();
    QVERIFY(bench.isUnmarked());
    bench.setRegister(QStringLiteral("M1_AMAX"), 0);
    bench.check();
    QVERIFY(bench.isMarked({}, {QStringLiteral("M1_AMAX")}));
    bench.setRegister(QStringLiteral("M1_AMAX"), 7);
    bench.check();
    QVERIFY(bench.isUnmarked());
}

void ToolRampLinkTest::marksAreClearedBeforeTheyAreSet()
{
    RampBench bench;
    bench.setRegister(QStringLiteral("M0_AMAX"), 0);
    bench.show();
    QStringList steps;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        if (receiver != bench.button)
            return;
        const auto has = [](const QString &text) { return text.isEmpty() ? "-" : "x"; };
        const QString state =
            QStringLiteral(" %1%2%3").arg(QLatin1String(has(bench.button->toolTip())),
                                          QLatin1String(has(bench.button->description())),
                                          QLatin1String(has(bench.button->styleSheet())));
        if (event->type() == QEvent::ToolTipChange)
            steps << QStringLiteral("tip") + state;
        else if (event->type() == QEvent::StyleChange)
            steps << QStringLiteral("style") + state;
    });
    bench.check();
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
    BenchGaps gaps;
    gaps.registers << name;
    RampBench bench(0, gaps);
    QStringList reads = readsOfAll();
    reads.removeAll(QStringLiteral("read %1 m0").arg(name));
    reads.removeAll(QStringLiteral("read %1 m0").arg(alsoUnread));
    QCOMPARE(bench.check(), reads);
    // A stage without a velocity is not in use.
    if (!alsoUnread.isEmpty())
        QVERIFY(bench.isUnmarked());
    else
        QVERIFY(name.startsWith(QLatin1String("M0")) ? bench.isMarked({name}, {})
                                                     : bench.isMarked({}, {name}));
}

void ToolRampLinkTest::registersThatAreGoneCountAsZero_data()
{
    missingRegistersCountAsZero_data();
}

void ToolRampLinkTest::registersThatAreGoneCountAsZero()
{
    QFETCH(QString, name);
    QFETCH(QString, alsoUnread);
    RampBench bench;
    bench.check();
    QVERIFY(bench.isUnmarked());
    delete bench.module()->getIcProduct(0)->getRegisterByName(name, true);
    QVERIFY(bench.check().filter(name).isEmpty());
    QCOMPARE(bench.isUnmarked(), !alsoUnread.isEmpty());
    QCOMPARE(bench.button->toolTip().endsWith(name), alsoUnread.isEmpty());
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
    RampBench bench;
    bench.link.failReads = true;
    QStringList reads = readsOfAll();
    reads.erase(std::remove_if(reads.begin(), reads.end(),
                               [](const QString &read) {
                                   return read.contains(QLatin1String("_A1")) ||
                                          read.contains(QLatin1String("_A2"));
                               }),
                reads.end());
    QCOMPARE(bench.check(), reads);
    QVERIFY(bench.isMarked(words(QStringLiteral("M0_VMAX M0_AMAX M0_DMAX")),
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
    BenchGaps gaps;
    gaps.hasChip = false;
    gaps.hasModule = hasModule;
    RampBench bench(0, gaps);
    if (hasModule) {
        bench.tellWritten(ToolBench::address(QStringLiteral("M0_VMAX")));
        QVERIFY(bench.isUnmarked());
    }
    QVERIFY(bench.check().isEmpty());
    QVERIFY(bench.isMarked(words(QStringLiteral("M0_VMAX M0_AMAX M0_DMAX")),
                           words(QStringLiteral("M1_VMAX M1_AMAX M1_DMAX"))));
}

void ToolRampLinkTest::checkNeverWrites()
{
    RampBench bench;
    bench.setRegister(QStringLiteral("M0_VMAX"), 0);
    bench.takeCalls();
    bench.tool()->showPlugin();
    bench.tellWritten(ToolBench::address(QStringLiteral("M1_D2")));
    QVERIFY(bench.takeWrites().isEmpty());
    QVERIFY(bench.button->property("NewPt").isNull());
}

QTEST_MAIN(ToolRampLinkTest)
#include "tst_tool_ramp_link.moc"
