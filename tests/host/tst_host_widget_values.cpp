#include "HostLocale.h"
#include "HostWidgetRig.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

class HostWidgetValuesTest : public HostWidgetRig
{
    Q_OBJECT

private slots:
    void setAndUpdateWritesAndTellsOnce();
    void setAndUpdateSaturates_data();
    void setAndUpdateSaturates();
    void setAndUpdateOfAReadOnlyRegisterOnlyShows();
    void blockedSignalsStillWrite();
    void theActualValueIsShownWithoutWriting();
    void showingAValueAfterAFailedWriteWritesNothing();
    void aListenerMayShowTheValueAgain();
    void theInputFollowsWritesFromElsewhere();
    void writesToOtherRegistersAndChipsAreNotFollowed();
    void writesForAnotherMotorOfTheSameChipAreFollowed();
    void aValueSetByAListenerOfTheWriteIsToldOnce();
    void typingIsNotDisturbedFromOutside();
    void abandonedTypingShowsTheValueFromOutside();
    void returnConfirmsTheOldNumberAgainstAValueFromOutside();
};

void HostWidgetValuesTest::setAndUpdateWritesAndTellsOnce()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    widget->setAndUpdateValue(passed(-5));
    QCOMPARE(spinBox("TARGET")->value(), -5);
    QCOMPARE(actualText("TARGET"), curLocale.toString(-5));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), -5);
    widget->setAndUpdateValue(passed(-5));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(link.calls, (QStringList{write(0x2d, -5), write(0x2d, -5)}));
}

void HostWidgetValuesTest::setAndUpdateSaturates_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<unsigned long long>("value");
    QTest::addColumn<int>("shown");
    QTest::newRow("beyond 32 bits") << "TARGET" << passed(5000000000) << 2147483647;
    QTest::newRow("far below 32 bits") << "TARGET" << passed(-5000000000) << -2147483647 - 1;
    QTest::newRow("above a byte") << "SPEED" << passed(256) << 255;
    QTest::newRow("below zero") << "SPEED" << passed(-1) << 0;
    QTest::newRow("above the register's limit") << "ACTUAL" << passed(8388608) << 8388607;
}

void HostWidgetValuesTest::setAndUpdateSaturates()
{
    QFETCH(QString, identifier);
    QFETCH(unsigned long long, value);
    const QByteArray name = identifier.toLatin1();
    makeWidget(name.constData())->setAndUpdateValue(value);
    QTEST(spinBox(name.constData())->value(), "shown");
}

void HostWidgetValuesTest::setAndUpdateOfAReadOnlyRegisterOnlyShows()
{
    XmlRegisterWidget *const widget = makeWidget("ACTUAL");
    widget->setInputWidgetReadOnly(true);
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    widget->setAndUpdateValue(passed(-321));
    QCOMPARE(spinBox("ACTUAL")->value(), -321);
    QCOMPARE(actualText("ACTUAL"), curLocale.toString(-321));
    QCOMPARE(changed.size(), 1);
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetValuesTest::blockedSignalsStillWrite()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    widget->blockSignals(true);
    widget->setAndUpdateValue(9);
    widget->blockSignals(false);
    QVERIFY(changed.isEmpty());
    QCOMPARE(spinBox("TARGET")->value(), 9);
    QCOMPARE(link.calls, QStringList(write(0x2d, 9)));
}

void HostWidgetValuesTest::theActualValueIsShownWithoutWriting()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    widget->updateActualValue(1500, false);
    QCOMPARE(actualText("TARGET"), curLocale.toString(1500));
    QCOMPARE(spinBox("TARGET")->value(), 100);
    widget->updateActualValue(1600, true);
    QCOMPARE(actualText("TARGET"), curLocale.toString(1600));
    QCOMPARE(spinBox("TARGET")->value(), 1600);
    QVERIFY(changed.isEmpty());
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetValuesTest::showingAValueAfterAFailedWriteWritesNothing()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    link.failWrites = true;
    widget->setAndUpdateValue(5);
    link.takeCalls();
    widget->updateActualValue(6, true);
    QCOMPARE(spinBox("TARGET")->value(), 6);
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetValuesTest::aListenerMayShowTheValueAgain()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    connect(widget, &XmlRegisterWidget::valueChanged, widget,
            [widget](int value) { widget->updateActualValue(value, true); });
    QTest::keyClick(spinBox("TARGET"), Qt::Key_Down);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(actualText("TARGET"), QStringLiteral("99"));
    QCOMPARE(link.calls, QStringList(write(0x2d, 99)));
}

void HostWidgetValuesTest::theInputFollowsWritesFromElsewhere()
{
    XmlRegisterWidget *const widget = makeWidget("SPEED");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    module->writeChannelRegister(field("SPEED")->getRegister(), 0, 0x0700);
    QCOMPARE(spinBox("SPEED")->value(), 7);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 7);
    // The other field of the register only.
    module->writeAndReadChannelField(field("LATCH"), 0, 1, nullptr);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(link.calls, (QStringList{write(0x20, 0x700), write(0x20, 0x701)}));
}

void HostWidgetValuesTest::writesToOtherRegistersAndChipsAreNotFollowed()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    module->writeChannelRegister(field("SPEED")->getRegister(), 0, 55);
    module->writeChannelRegister(field("TARGET")->getRegister(), 2, 55);
    QCOMPARE(spinBox("TARGET")->value(), 100);
    QVERIFY(changed.isEmpty());
}

void HostWidgetValuesTest::writesForAnotherMotorOfTheSameChipAreFollowed()
{
    makeWidget("TARGET");
    module->writeChannelRegister(field("TARGET")->getRegister(), 1, 55);
    QCOMPARE(spinBox("TARGET")->value(), 55);
}

void HostWidgetValuesTest::aValueSetByAListenerOfTheWriteIsToldOnce()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, widget,
            [widget](unsigned short, int value) {
                if (value == 1)
                    widget->setAndUpdateValue(2);
            });
    widget->setAndUpdateValue(1);
    QCOMPARE(spinBox("TARGET")->value(), 2);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 2);
    QCOMPARE(link.calls, (QStringList{write(0x2d, 1), write(0x2d, 2)}));
}

void HostWidgetValuesTest::typingIsNotDisturbedFromOutside()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSpinBox *const input = spinBox("TARGET");
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, QStringLiteral("12"));
    widget->updateActualValue(777, true);
    module->writeChannelRegister(field("TARGET")->getRegister(), 0, 888);
    QCOMPARE(input->text(), QStringLiteral("12"));
    QTest::keyClicks(input, QStringLiteral("3"));
    link.takeCalls();
    QTest::keyClick(input, Qt::Key_Return);
    QCOMPARE(input->value(), 123);
    QCOMPARE(link.calls, QStringList(write(0x2d, 123)));
    widget->updateActualValue(777, true);
    QCOMPARE(input->value(), 777);
}

void HostWidgetValuesTest::abandonedTypingShowsTheValueFromOutside()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSpinBox *const input = spinBox("TARGET");
    input->setFocus();
    QTest::keyClick(input, Qt::Key_End);
    QTest::keyClicks(input, QStringLiteral("5"));
    QTest::keyClick(input, Qt::Key_Backspace);
    widget->updateActualValue(777, true);
    QCOMPARE(input->text(), QStringLiteral("100"));
    input->clearFocus();
    QCOMPARE(input->value(), 777);
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetValuesTest::returnConfirmsTheOldNumberAgainstAValueFromOutside()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSpinBox *const input = spinBox("TARGET");
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, QStringLiteral("100"));
    widget->updateActualValue(777, true);
    QTest::keyClick(input, Qt::Key_Return);
    QCOMPARE(input->value(), 100);
    QCOMPARE(link.calls, QStringList(write(0x2d, 100)));
}

QTEST_MAIN(HostWidgetValuesTest)
#include "tst_host_widget_values.moc"
