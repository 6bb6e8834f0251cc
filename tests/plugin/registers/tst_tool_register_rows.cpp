#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "RegisterRig.h"

#include "XmlRegisterWidgetContainer.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSpinBox>
#include <QTest>
#include <QVBoxLayout>

namespace {

QString actualText(const ToolRig &rig, const QString &row)
{
    return rig.tool()->findChild<QLabel *>(row + QLatin1String("_actual"))->text();
}

const QSpinBox *inputOf(const ToolRig &rig, const QString &row)
{
    return rig.tool()->findChild<QSpinBox *>(row + QLatin1String("_input"));
}

QString frenchText(int value)
{
    return QLocale(QLocale::French, QLocale::France).toString(value);
}

} // namespace

class ToolRegisterRowsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void missingFieldsHaveNoRow_data();
    void missingFieldsHaveNoRow();
    void rowsStandAtTheTopOfTheSettings();
    void actualPositionsAreReadOnly();
    void changedTargetRowMovesTheMarker_data();
    void changedTargetRowMovesTheMarker();
    void targetWrittenElsewhereMovesTheMarker();
    void targetRowIsFollowedBeforeTheChartExists();
    void targetRowsOutliveEachOther();
    void deletedFieldsAreNotUsed();
};

void ToolRegisterRowsTest::missingFieldsHaveNoRow_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : rowNames)
        QTest::newRow(qPrintable(name)) << name;
}

void ToolRegisterRowsTest::missingFieldsHaveNoRow()
{
    QFETCH(QString, name);
    RigGaps gaps;
    gaps.fields << name;
    ToolRig rig(0, gaps);
    QCOMPARE(rowsOf(rig), without(rowNames, name));
    QCOMPARE(registerListOf(rig).size(), 8);
    QVERIFY(!registerListOf(rig).contains(ToolRig::address(name)));
    const auto title = [&name](const char *field) {
        return name == QLatin1String(field) ? QString()
                                            : QLatin1String(field) + QLatin1String(" field");
    };
    QCOMPARE(rig.axisX()->titleText(), title("M0_XACTUAL"));
    QCOMPARE(rig.axisY()->titleText(), title("M1_XACTUAL"));
}

void ToolRegisterRowsTest::rowsStandAtTheTopOfTheSettings()
{
    ToolRig rig;
    QCOMPARE(rowsOf(rig), rowNames);
    for (const XmlRegisterWidget *row : rig.tool()->findChildren<XmlRegisterWidget *>())
        QCOMPARE(row->parent(), static_cast<QObject *>(rig.tool()));
    const auto containers = rig.tool()->findChildren<XmlRegisterWidgetContainer *>(
        QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(containers.size(), 1);
    QCOMPARE(containers.at(0)->getXmlWidgets(), rig.tool()->findChildren<XmlRegisterWidget *>());

    auto *settings = rig.tool()->findChild<QVBoxLayout *>(QStringLiteral("settingsLayout"));
    QWidget *box = containers.at(0)->widget();
    QCOMPARE(settings->itemAt(0)->widget(), box);
    QCOMPARE(settings->stretch(0), 0);
    QCOMPARE(settings->itemAt(0)->alignment(), Qt::Alignment());
    QCOMPARE(box->layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    QVERIFY(!qobject_cast<QGroupBox *>(box));
    const auto *form = qobject_cast<QFormLayout *>(box->layout());
    QVERIFY(form);
    QCOMPARE(form->rowCount(), 4);
    for (int row = 0; row < 4; ++row) {
        const QWidget *label = form->itemAt(row, QFormLayout::LabelRole)->widget();
        QCOMPARE(label->objectName(), rowNames.at(row) + QLatin1String("_label"));
    }
}

void ToolRegisterRowsTest::actualPositionsAreReadOnly()
{
    // On a chip whose actual positions could be written.
    OwnChip chip;
    unsigned int address = 1;
    for (const QString &name : rowNames)
        chip.addField(chip.add(address++, qPrintable(name)), qPrintable(name), 0, 24);
    const QWidget *tool = chip.makeTool();
    for (const QString &name : rowNames) {
        const auto *input = tool->findChild<QSpinBox *>(name + QLatin1String("_input"));
        QVERIFY(input);
        QCOMPARE(input->isReadOnly(), name.endsWith(QLatin1String("ACTUAL")));
    }
}

void ToolRegisterRowsTest::changedTargetRowMovesTheMarker_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("value");

    for (const int axis : {0, 1}) {
        QTest::addRow("positive, axis %d", axis) << axis << 5000;
        QTest::addRow("negative, axis %d", axis) << axis << -1;
        QTest::addRow("zero, axis %d", axis) << axis << 0;
        QTest::addRow("largest, axis %d", axis) << axis << INT_MAX;
        QTest::addRow("smallest, axis %d", axis) << axis << INT_MIN;
    }
}

void ToolRegisterRowsTest::changedTargetRowMovesTheMarker()
{
    QFETCH(int, axis);
    QFETCH(int, value);
    ToolRig rig;
    rig.setTarget({70, 80});
    rig.updateTick();
    rig.target()->setProperty("NewPt", false);
    rig.link.takeCalls();
    const QString name = rowNames.at(2 + axis);
    const QString other = rowNames.at(3 - axis);
    const QString otherText = actualText(rig, other);
    emit rig.registerWidget(qPrintable(name))->valueChanged(value);
    QCOMPARE(rig.target()->count(), 1);
    QCOMPARE(rig.target()->at(0), axis == 0 ? QPointF(value, 80) : QPointF(70, value));
    QCOMPARE(actualText(rig, name), frenchText(value));
    const auto *input = inputOf(rig, name);
    QCOMPARE(input->value(), qBound(input->minimum(), value, input->maximum()));
    QCOMPARE(actualText(rig, other), otherText);
    // It is on the chip already, so it is not sent.
    QVERIFY(!rig.target()->property("NewPt").toBool());
    QVERIFY(rig.link.takeCalls().isEmpty());
}

void ToolRegisterRowsTest::targetWrittenElsewhereMovesTheMarker()
{
    ToolRig rig;
    rig.module()->writeChannelRegister(registerOf(rig, "M0_XTARGET"), 0, 5000);
    rig.module()->writeChannelRegister(registerOf(rig, "M1_XTARGET"), 0, 300);
    QCOMPARE(rig.target()->at(0), QPointF(5000, 300));
    QCOMPARE(rig.takeCalls().size(), 2);
    auto *input = rig.widget<QSpinBox>("M1_XTARGET_input");
    QCOMPARE(input->value(), 300);
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, QStringLiteral("77"));
    QTest::keyClick(input, Qt::Key_Return);
    QCOMPARE(rig.target()->at(0), QPointF(5000, 77));
    QCOMPARE(rig.takeCalls(), QStringList{QStringLiteral("write M1_XTARGET m0 77")});
}

void ToolRegisterRowsTest::targetRowIsFollowedBeforeTheChartExists()
{
    QPointer<XmlRegisterWidget> row;
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        if (event->type() != QEvent::DynamicPropertyChange)
            return;
        auto *change = static_cast<QDynamicPropertyChangeEvent *>(event);
        if (change->propertyName() != "RampList")
            return;
        row = receiver->parent()->findChildren<XmlRegisterWidget *>().value(2);
        emit row->valueChanged(1234);
    });
    ToolRig rig;
    QVERIFY(row);
    QCOMPARE(row.data(), rig.registerWidget("M0_XTARGET"));
    QCOMPARE(actualText(rig, rowNames.at(2)), frenchText(1234));
    QCOMPARE(rig.target()->at(0), QPointF(0, 0));
}

void ToolRegisterRowsTest::targetRowsOutliveEachOther()
{
    ToolRig rig;
    delete rig.registerWidget("M1_XTARGET");
    emit rig.registerWidget("M0_XTARGET")->valueChanged(11);
    QCOMPARE(rig.target()->at(0), QPointF(11, 0));
    // The row stays when its register goes, and follows no more than the marker.
    delete registerOf(rig, "M0_XTARGET");
    for (XmlRegisterWidget *row : rig.tool()->findChildren<XmlRegisterWidget *>())
        emit row->valueChanged(12);
    QCOMPARE(rig.target()->at(0), QPointF(12, 0));
    delete rig.tool()->findChildren<XmlRegisterWidget *>().constLast();
    rig.show();
    rig.setTarget({1, 1});
    rig.updateTick();
    rig.call("on_pbStart_clicked");
    rig.call("on_pbStop_clicked");
    QVERIFY(rig.takeWrites().filter(QStringLiteral("XTARGET")).isEmpty());
}

void ToolRegisterRowsTest::deletedFieldsAreNotUsed()
{
    ToolRig rig;
    for (const QString &name : rowNames)
        delete rig.registerWidget(qPrintable(name))->registerField();
    for (const char *name : {"M0_VACTUAL", "M1_VMAX"})
        delete registerOf(rig, name);
    for (XmlRegisterWidget *row : rig.tool()->findChildren<XmlRegisterWidget *>())
        emit row->valueChanged(3);
    QCOMPARE(rig.target()->at(0), QPointF(3, 3));
    rig.show();
    rig.setTarget({5, 6});
    rig.updateTick();
    rig.takeCalls();
    rig.call("on_pbStart_clicked");
    rig.call("on_pbStop_clicked");
    const QStringList writes{
        QStringLiteral("write M0_VMAX m0 0"), QStringLiteral("write RAMPMODE m0 0"),
        QStringLiteral("write RAMPMODE m0 768"), QStringLiteral("write M0_VMAX m0 1000"),
        QStringLiteral("write RAMPMODE m0 0")};
    QCOMPARE(rig.takeWrites(), writes);
    rig.updateTick();
    // The velocity that cannot be read does not end the move.
    QVERIFY(!rig.widget<QWidget>("pbStart")->isEnabled());
}

QTEST_MAIN(ToolRegisterRowsTest)
#include "tst_tool_register_rows.moc"
