#include "HostLocale.h"
#include "HostWidgetRig.h"
#include "XmlRegisterWidgetContainer.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QPointer>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

namespace {

/// Counts the requests to lay a widget out anew.
class LayoutCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::LayoutRequest ? 1 : 0;
        return false;
    }
};

} // namespace

class HostWidgetLifetimesTest : public HostWidgetRig
{
    Q_OBJECT

private slots:
    void aDeletedRegisterLeavesAnInertWidget();
    void aNullFieldLeavesAnInertWidget();
    void aListenerOfAnEditMayDeleteTheTool();
    void aListenerOfAnEditMayDeleteTheWidget();
    void aListenerOfAWriteMayDeleteTheWidget();
    void aFormGetsARowForEachWidget();
    void otherLayoutsGetARowForEachWidget();
    void aTitleIsShownUnlessItIsEmpty();
    void aDeletedWidgetLeavesTheContainerAndItsRow();
    void containerAndWidgetsMayGoInAnyOrder_data();
    void containerAndWidgetsMayGoInAnyOrder();
    void equalValuesAndNewActualValuesLayNothingOutAnew();
};

void HostWidgetLifetimesTest::aDeletedRegisterLeavesAnInertWidget()
{
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    QSignalSpy changed(widget, &XmlRegisterWidget::valueChanged);
    delete field("TARGET")->getRegister();
    QVERIFY(!widget->registerField());
    widget->setAndUpdateValue(5);
    widget->updateActualValue(6, true);
    emit module->registerOutputBufferHasWritten(0x2d, 7, 100, 0);
    QTest::keyClick(spinBox("TARGET"), Qt::Key_Up);
    QCOMPARE(spinBox("TARGET")->value(), 100);
    QVERIFY(changed.isEmpty());
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetLifetimesTest::aNullFieldLeavesAnInertWidget()
{
    XmlRegisterWidget widget(nullptr, tool.get());
    QSignalSpy changed(&widget, &XmlRegisterWidget::valueChanged);
    container->addXmlWidget(&widget);
    QCOMPARE(container->getXmlWidgets(), {&widget});
    widget.setInputWidgetReadOnly(true);
    widget.setAndUpdateValue(5);
    widget.updateActualValue(6, true);
    QVERIFY(!widget.registerField());
    QVERIFY(changed.isEmpty());
    QVERIFY(link.calls.isEmpty());
}

void HostWidgetLifetimesTest::aListenerOfAnEditMayDeleteTheTool()
{
    makeWidget("TARGET");
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, tool.get(),
            [this] { tool.reset(); });
    QTest::keyClick(spinBox("TARGET"), Qt::Key_Up);
    QVERIFY(!tool);
    QCOMPARE(link.calls, QStringList(write(0x2d, 101)));
}

void HostWidgetLifetimesTest::aListenerOfAnEditMayDeleteTheWidget()
{
    const QPointer<XmlRegisterWidget> widget = makeWidget("LATCH");
    connect(widget, &XmlRegisterWidget::valueChanged, this, [widget] { delete widget; });
    auto *const box = tool->findChild<QCheckBox *>(QStringLiteral("LATCH_input"));
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    QVERIFY(!widget);
    QVERIFY(!tool->findChild<QCheckBox *>(QStringLiteral("LATCH_input")));
}

void HostWidgetLifetimesTest::aListenerOfAWriteMayDeleteTheWidget()
{
    const QPointer<XmlRegisterWidget> widget = makeWidget("TARGET");
    connect(module.get(), &QVXLModuleInterface::registerOutputBufferHasWritten, widget,
            [widget] { delete widget; });
    widget->setAndUpdateValue(3);
    QVERIFY(!widget);
    QCOMPARE(link.calls, QStringList(write(0x2d, 3)));
}

void HostWidgetLifetimesTest::aFormGetsARowForEachWidget()
{
    XmlRegisterWidget *const target = makeWidget("TARGET");
    XmlRegisterWidget *const actual = makeWidget("ACTUAL");
    container->addXmlWidget(target);
    container->addXmlWidget(nullptr);
    QCOMPARE(container->getXmlWidgets(), (QList<XmlRegisterWidget *>{target, actual}));
    auto *const form = qobject_cast<QFormLayout *>(container->widget()->layout());
    QVERIFY(form);
    QCOMPARE(form->rowCount(), 2);
    QCOMPARE(form->itemAt(0, QFormLayout::LabelRole)->widget()->objectName(),
             QStringLiteral("TARGET_label"));
    const QWidget *const box = form->itemAt(0, QFormLayout::FieldRole)->widget();
    QCOMPARE(box->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size(), 2);
    QCOMPARE(spinBox("TARGET")->parentWidget(), box);
    QVERIFY(spinBox("TARGET")->x() < actualText("TARGET").size() + box->width());
}

void HostWidgetLifetimesTest::otherLayoutsGetARowForEachWidget()
{
    XmlRegisterWidgetContainer column(new QVBoxLayout, nullptr, QString());
    XmlRegisterWidget target(field("TARGET"), tool.get());
    XmlRegisterWidget actual(field("ACTUAL"), tool.get());
    column.addXmlWidget(&target);
    column.addXmlWidget(&actual);
    QCOMPARE(column.widget()->layout()->count(), 2);
    const QWidget *const row = column.widget()->layout()->itemAt(1)->widget();
    for (const char *part : {"ACTUAL_label", "ACTUAL_input", "ACTUAL_actual"})
        QVERIFY2(row->findChild<QWidget *>(QLatin1String(part)), part);
}

void HostWidgetLifetimesTest::aTitleIsShownUnlessItIsEmpty()
{
    XmlRegisterWidgetContainer titled(new QFormLayout, nullptr, QStringLiteral("Ramps"));
    const auto *const group = qobject_cast<QGroupBox *>(titled.widget());
    QVERIFY(group);
    QCOMPARE(group->title(), QStringLiteral("Ramps"));
    QVERIFY(!qobject_cast<QGroupBox *>(container->widget()));
}

void HostWidgetLifetimesTest::aDeletedWidgetLeavesTheContainerAndItsRow()
{
    XmlRegisterWidget *const target = makeWidget("TARGET");
    XmlRegisterWidget *const actual = makeWidget("ACTUAL");
    delete target;
    QCOMPARE(container->getXmlWidgets(), {actual});
    auto *const form = qobject_cast<QFormLayout *>(container->widget()->layout());
    QCOMPARE(form->rowCount(), 1);
    QVERIFY(!tool->findChild<QWidget *>(QStringLiteral("TARGET_label")));
    QVERIFY(!spinBox("TARGET"));
}

void HostWidgetLifetimesTest::containerAndWidgetsMayGoInAnyOrder_data()
{
    QTest::addColumn<QString>("order");
    for (const char *order : {"cpr", "crp", "pcr", "prc", "rcp", "rpc"})
        QTest::newRow(order) << QString::fromLatin1(order);
}

void HostWidgetLifetimesTest::containerAndWidgetsMayGoInAnyOrder()
{
    QFETCH(QString, order);
    XmlRegisterWidget *const widget = makeWidget("TARGET");
    const QPointer<QWidget> panel = container->widget();
    for (const QChar &step : qAsConst(order)) {
        if (step == QLatin1Char('c'))
            delete container;
        else if (step == QLatin1Char('p'))
            delete panel;
        else
            delete widget;
        if (container) {
            QCOMPARE(container->widget(), panel.data());
            container->addXmlWidget(nullptr);
        }
        module->writeChannelRegister(field("TARGET")->getRegister(), 0, 7);
    }
    QVERIFY(!spinBox("TARGET"));
}

void HostWidgetLifetimesTest::equalValuesAndNewActualValuesLayNothingOutAnew()
{
    XmlRegisterWidget *const widget = makeWidget("ACTUAL");
    // Each round lays out one level of the nested layouts.
    for (int round = 0; round < 5; ++round)
        QCoreApplication::processEvents();
    LayoutCounter counter;
    for (QWidget *const child : tool->findChildren<QWidget *>())
        child->installEventFilter(&counter);
    tool->installEventFilter(&counter);
    for (int value : {1, 22, 333, 333, -8388608})
        widget->setAndUpdateValue(passed(value));
    QCoreApplication::processEvents();
    QCOMPARE(actualText("ACTUAL"), curLocale.toString(-8388608));
    QCOMPARE(counter.count, 0);
}

QTEST_MAIN(HostWidgetLifetimesTest)
#include "tst_host_widget_lifetimes.moc"
