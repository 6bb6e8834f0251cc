#include "PositionRig.h"
#include "VelocityProfile.h"

#include <QSpinBox>
#include <QTest>

class PositionModeSettingsTest : public PositionRig
{
    Q_OBJECT

private slots:
    void editorsAreMadeFromTheChipDescription();
    void anEditIsWrittenWhenItIsFinished();
    void leavingAnEditorWritesToo();
    void eachMotorHasItsOwnSettings();
    void numbersOutOfRangeCannotBeEntered();
    void aWriteWithoutAnswerIsTakenBack();
};

void PositionModeSettingsTest::editorsAreMadeFromTheChipDescription()
{
    for (int i = 0; i < rampSettingCount; ++i) {
        const QString name = QStringLiteral("M0_") + rampSettingName(i);
        QVERIFY2(box(name), qPrintable(name));
        QCOMPARE(box(name)->value(), simulated->registerValue(name).value_or(-1));
        QCOMPARE(box(name)->minimum(), 0);
        QCOMPARE(box(name)->maximum(), 2147483647);
        QVERIFY(box(name)->isEnabled());
    }
    QCOMPARE(box(QStringLiteral("M0_V1"))->suffix(), QStringLiteral(" units/s"));
    QCOMPARE(box(QStringLiteral("M0_A1"))->suffix(), QStringLiteral(" units/s²"));
    QCOMPARE(box(QStringLiteral("spTarget"))->suffix(), QStringLiteral(" units"));
    QCOMPARE(box(QStringLiteral("spTarget"))->minimum(), workbench::minimumPosition);
    QCOMPARE(box(QStringLiteral("spTarget"))->maximum(), workbench::maximumPosition);
}

void PositionModeSettingsTest::anEditIsWrittenWhenItIsFinished()
{
    record();
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("1234"), false);
    QCOMPARE(link.takeCalls(), QStringList());
    QTest::keyClick(box(QStringLiteral("M0_VMAX")), Qt::Key_Return);
    QCOMPARE(link.takeCalls(), QStringList{QStringLiteral("write 0x13 m0 1234")});
}

void PositionModeSettingsTest::leavingAnEditorWritesToo()
{
    tool->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(tool));
    box(QStringLiteral("M0_D2"))->setFocus();
    enter(QStringLiteral("M0_D2"), QStringLiteral("77"), false);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_D2")).value_or(0), 3500);
    QTest::keyClick(box(QStringLiteral("M0_D2")), Qt::Key_Tab);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_D2")).value_or(0), 77);
}

void PositionModeSettingsTest::eachMotorHasItsOwnSettings()
{
    open(1);
    QVERIFY(!box(QStringLiteral("M0_VMAX")));
    record();
    enter(QStringLiteral("M1_VMAX"), QStringLiteral("1234"));
    QCOMPARE(link.takeCalls(), QStringList{QStringLiteral("write 0x23 m1 1234")});
}

void PositionModeSettingsTest::numbersOutOfRangeCannotBeEntered()
{
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("-5"));
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_VMAX")).value_or(-1), 5);
    enter(QStringLiteral("spTarget"), QStringLiteral("99999999"));
    QVERIFY(box(QStringLiteral("spTarget"))->value() <= workbench::maximumPosition);
}

void PositionModeSettingsTest::aWriteWithoutAnswerIsTakenBack()
{
    record();
    link.failWrites = true;
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("5"));
    QVERIFY2(status().contains(QStringLiteral("M0_VMAX: no answer")), qPrintable(status()));
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 2000);
}

QTEST_MAIN(PositionModeSettingsTest)
#include "tst_position_mode_settings.moc"
