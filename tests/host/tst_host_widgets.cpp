#include "HostLocale.h"
#include "HostWidgetRig.h"
#include "XmlProductIC.h"
#include "XmlRegisterWidgetContainer.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>

namespace {

bool turnWheel(QWidget *widget, int delta)
{
    const QPointF position = widget->rect().center();
    QWheelEvent event(position, widget->mapToGlobal(position.toPoint()), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    return QApplication::sendEvent(widget, &event);
}

} // namespace

class HostWidgetsTest : public HostWidgetRig
{
    Q_OBJECT

private slots:
    void partsAreNamedAfterTheField();
    void theToolTipTellsAddressDescriptionAndUnit();
    void theInitialValueNeedsNoRequest();
    void limitsOfTheRegisterNarrowItsOnlyField();
    void numbersAreGroupedInTheToolsLocale();
    void aTypedNumberIsWrittenOnce();
    void theArrowsWriteEachStep();
    void aCheckBoxWritesItsBit();
    void aWidgetWithoutAToolWritesNothing();
    void aFailedWriteCanBeRepeated();
    void aReadOnlyInputCannotBeEdited();
    void aReadOnlyCheckBoxCannotBeEdited();
    void aReadOnlyRegisterHasAReadOnlyInput();
};

void HostWidgetsTest::partsAreNamedAfterTheField()
{
    makeWidget("TARGET");
    QVERIFY(spinBox("TARGET"));
    const auto *const label = tool->findChild<QLabel *>(QStringLiteral("TARGET_label"));
    QVERIFY(label);
    QCOMPARE(label->text(), QStringLiteral("Target"));
    QVERIFY(tool->findChild<QLabel *>(QStringLiteral("TARGET_actual")));
    makeWidget("LATCH");
    QVERIFY(tool->findChild<QCheckBox *>(QStringLiteral("LATCH_input")));
}

void HostWidgetsTest::theToolTipTellsAddressDescriptionAndUnit()
{
    makeWidget("TARGET");
    makeWidget("ACTUAL");
    QCOMPARE(spinBox("TARGET")->toolTip(), QStringLiteral("0x2D\nWhere to\npps"));
    QCOMPARE(spinBox("ACTUAL")->toolTip(), QStringLiteral("0x21"));
}

void HostWidgetsTest::theInitialValueNeedsNoRequest()
{
    makeWidget("TARGET");
    QCOMPARE(spinBox("TARGET")->value(), 100);
    auto *const mode = module->getIcProduct(0)->getRegisterByName(QStringLiteral("MODE"), true);
    module->writeChannelRegister(mode, 0, 0x4200);
    link.takeCalls();
    makeWidget("SPEED");
    QCOMPARE(spinBox("SPEED")->value(), 0x42);
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetsTest::limitsOfTheRegisterNarrowItsOnlyField()
{
    makeWidget("ACTUAL");
    makeWidget("SPEED");
    QCOMPARE(spinBox("ACTUAL")->minimum(), -8388608);
    QCOMPARE(spinBox("ACTUAL")->maximum(), 8388607);
    QCOMPARE(spinBox("SPEED")->minimum(), 0);
    QCOMPARE(spinBox("SPEED")->maximum(), 255);
}

void HostWidgetsTest::numbersAreGroupedInTheToolsLocale()
{
    makeWidget("TARGET")->setAndUpdateValue(1234567);
    const QString grouped = curLocale.toString(1234567);
    QVERIFY(grouped.size() > 7);
    QCOMPARE(spinBox("TARGET")->text(), grouped);
    QCOMPARE(actualText("TARGET"), grouped);
    tool->setLocale(QLocale::c());
    QCOMPARE(actualText("TARGET"), QStringLiteral("1234567"));
}

void HostWidgetsTest::aTypedNumberIsWrittenOnce()
{
    QSignalSpy changed(makeWidget("TARGET"), &XmlRegisterWidget::valueChanged);
    QSpinBox *const input = spinBox("TARGET");
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, QStringLiteral("5000"));
    QVERIFY(link.calls.isEmpty());
    QTest::keyClick(input, Qt::Key_Return);
    QCOMPARE(link.takeCalls(), QStringList(write(0x2d, 5000)));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 5000);
    QTest::keyClick(input, Qt::Key_Return);
    input->clearFocus();
    QVERIFY(link.calls.isEmpty());
    QCOMPARE(changed.size(), 1);
}

void HostWidgetsTest::theArrowsWriteEachStep()
{
    QSignalSpy changed(makeWidget("SPEED"), &XmlRegisterWidget::valueChanged);
    QTest::keyClick(spinBox("SPEED"), Qt::Key_Up);
    QVERIFY(turnWheel(spinBox("SPEED"), 120));
    QCOMPARE(link.calls, (QStringList{write(0x20, 0x201), write(0x20, 0x301)}));
    QCOMPARE(changed.size(), 2);
}

void HostWidgetsTest::aCheckBoxWritesItsBit()
{
    QSignalSpy changed(makeWidget("LATCH"), &XmlRegisterWidget::valueChanged);
    auto *const box = tool->findChild<QCheckBox *>(QStringLiteral("LATCH_input"));
    QVERIFY(box->isChecked());
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    QVERIFY(!box->isChecked());
    QCOMPARE(link.takeCalls(), QStringList(write(0x20, 0x100)));
    QTest::keyClick(box, Qt::Key_Space);
    QCOMPARE(link.takeCalls(), QStringList(write(0x20, 0x101)));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.at(0).at(0).toInt(), 0);
    QCOMPARE(changed.at(1).at(0).toInt(), 1);
}

void HostWidgetsTest::aWidgetWithoutAToolWritesNothing()
{
    QObject parent;
    auto *const widget = new XmlRegisterWidget(field("TARGET"), &parent);
    container->addXmlWidget(widget);
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    widget->setAndUpdateValue(5);
    QTest::keyClick(spinBox("TARGET"), Qt::Key_Up);
    QCOMPARE(changed.size(), 2);
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetsTest::aFailedWriteCanBeRepeated()
{
    makeWidget("TARGET");
    link.failWrites = true;
    QSpinBox *const input = spinBox("TARGET");
    const auto enter = [input] {
        input->setFocus();
        input->selectAll();
        QTest::keyClicks(input, QStringLiteral("7"));
        QTest::keyClick(input, Qt::Key_Return);
    };
    enter();
    QCOMPARE(link.takeCalls(), QStringList(write(0x2d, 7)));
    link.failWrites = false;
    enter();
    QCOMPARE(link.takeCalls(), QStringList(write(0x2d, 7)));
    enter();
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetsTest::aReadOnlyInputCannotBeEdited()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    widget->setInputWidgetReadOnly(true);
    QSpinBox *const input = spinBox("TARGET");
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, QStringLiteral("5"));
    QTest::keyClick(input, Qt::Key_Return);
    QTest::keyClick(input, Qt::Key_Up);
    QTest::keyClick(input, Qt::Key_PageDown);
    turnWheel(input, 120);
    QTest::mouseClick(input, Qt::LeftButton, {}, QPoint(input->width() - 4, 4));
    QCOMPARE(input->value(), 100);
    QCOMPARE(input->text(), QStringLiteral("100"));
    QVERIFY(link.calls.isEmpty());
    widget->setAndUpdateValue(200);
    QCOMPARE(input->value(), 200);
    QCOMPARE(link.takeCalls(), QStringList(write(0x2d, 200)));
    widget->setInputWidgetReadOnly(false);
    QTest::keyClick(input, Qt::Key_Up);
    QCOMPARE(link.calls, QStringList(write(0x2d, 201)));
}

void HostWidgetsTest::aReadOnlyCheckBoxCannotBeEdited()
{
    XmlRegisterWidget *const widget = makeWidget("LATCH");
    widget->setInputWidgetReadOnly(true);
    auto *const box = tool->findChild<QCheckBox *>(QStringLiteral("LATCH_input"));
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    QTest::keyClick(box, Qt::Key_Space);
    QVERIFY(box->isChecked());
    QVERIFY(link.calls.isEmpty());
    widget->setAndUpdateValue(0);
    QVERIFY(!box->isChecked());
    QCOMPARE(link.calls, QStringList(write(0x20, 0x100)));
}

void HostWidgetsTest::aReadOnlyRegisterHasAReadOnlyInput()
{
    makeWidget("ACTUAL")->setInputWidgetReadOnly(false);
    QTest::keyClick(spinBox("ACTUAL"), Qt::Key_Up);
    QCOMPARE(spinBox("ACTUAL")->value(), 0);
    QVERIFY(spinBox("ACTUAL")->isReadOnly());
}

QTEST_MAIN(HostWidgetsTest)
#include "tst_host_widgets.moc"
