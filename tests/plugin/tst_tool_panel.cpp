#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>

namespace {

constexpr int limitBound = 8388352;
const QStringList limitNames{QStringLiteral("spM0min"), QStringLiteral("spM0max"),
                             QStringLiteral("spM1min"), QStringLiteral("spM1max")};

QString grouped(int value)
{
    const QString separator(QLocale(QLocale::French, QLocale::France).groupSeparator());
    QString digits = QString::number(qAbs(value));
    for (int at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, separator);
    return value < 0 ? QLatin1Char('-') + digits : digits;
}

void turnWheel(QWidget *widget, int steps)
{
    const QPointF at = widget->rect().center();
    QWheelEvent event(at, widget->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, 120 * steps),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

class ToolPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void limitsNeverLeaveTheirBounds_data();
    void limitsNeverLeaveTheirBounds();
    void limitsStepByTheGrid_data();
    void limitsStepByTheGrid();
    void tracesStepByThousand();
    void tracesStayWithinBounds();
    void tracesBeingTypedTrimNothing();
    void numbersAreGroupedTheFrenchWay_data();
    void numbersAreGroupedTheFrenchWay();
    void clearButtonTogglesOnEveryClick();
};

void ToolPanelTest::limitsNeverLeaveTheirBounds_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : limitNames)
        QTest::newRow(qPrintable(name)) << name;
}

void ToolPanelTest::limitsNeverLeaveTheirBounds()
{
    QFETCH(QString, name);
    ToolRig rig;
    auto *limit = rig.widget<QSpinBox>(qPrintable(name));
    const bool isLower = name.endsWith(QLatin1String("min"));
    limit->setValue(isLower ? INT_MIN : INT_MAX);
    QCOMPARE(limit->value(), isLower ? -limitBound : limitBound);
    // The other end is where the opposite limit leaves room.
    limit->setValue(isLower ? INT_MAX : INT_MIN);
    QCOMPARE(limit->value(), isLower ? 256 - 512 : -256 + 512);
    limit->setFocus();
    limit->selectAll();
    QTest::keyClicks(limit, QStringLiteral("99999999"));
    QTest::keyClick(limit, Qt::Key_Return);
    QVERIFY(limit->value() <= limitBound);
}

void ToolPanelTest::limitsStepByTheGrid_data()
{
    limitsNeverLeaveTheirBounds_data();
}

void ToolPanelTest::limitsStepByTheGrid()
{
    QFETCH(QString, name);
    ToolRig rig;
    rig.setLimits(-4096, 4096, -4096, 4096);
    auto *limit = rig.widget<QSpinBox>(qPrintable(name));
    const int start = limit->value();
    QTest::keyClick(limit, Qt::Key_Up);
    QCOMPARE(limit->value(), start + 256);
    QTest::keyClick(limit, Qt::Key_Down);
    QTest::keyClick(limit, Qt::Key_Down);
    QCOMPARE(limit->value(), start - 256);
    turnWheel(limit, 1);
    QCOMPARE(limit->value(), start);
    turnWheel(limit, -1);
    QCOMPARE(limit->value(), start - 256);
}

void ToolPanelTest::tracesStepByThousand()
{
    ToolRig rig;
    auto *traces = rig.widget<QSpinBox>("spTraces");
    QTest::keyClick(traces, Qt::Key_Up);
    QCOMPARE(traces->value(), 6000);
    turnWheel(traces, -2);
    QCOMPARE(traces->value(), 4000);
    QCOMPARE(traces->text(), grouped(4000) + QStringLiteral(" Traces"));
}

void ToolPanelTest::tracesStayWithinBounds()
{
    ToolRig rig;
    auto *traces = rig.widget<QSpinBox>("spTraces");
    QCOMPARE(traces->text(), grouped(5000) + QStringLiteral(" Traces"));
    traces->setValue(INT_MIN);
    QCOMPARE(traces->value(), 10);
    traces->setValue(INT_MAX);
    QCOMPARE(traces->value(), 100000);
}

/// 50000 is 5, 50, 500 and 5000 on its way.
void ToolPanelTest::tracesBeingTypedTrimNothing()
{
    ToolRig rig;
    rig.show();
    rig.updateTick();
    rig.call("on_pbStart_clicked");
    auto *traces = rig.widget<QSpinBox>("spTraces");
    for (int x = 1; x <= 60; ++x)
        rig.sample(4 * x, 0);
    rig.updateTick();
    const int drawn = rig.trace()->count();
    QVERIFY(drawn > 40);
    traces->selectAll();
    for (const char digit : {'5', '0', '0', '0', '0'}) {
        QTest::keyClick(traces, digit);
        rig.updateTick();
        QCOMPARE(traces->value(), 5000);
        QCOMPARE(rig.trace()->count(), drawn);
    }
    QTest::keyClick(traces, Qt::Key_Return);
    QCOMPARE(traces->value(), 50000);
}

void ToolPanelTest::numbersAreGroupedTheFrenchWay_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");

    QTest::newRow("spM0min") << limitNames.at(0) << -8388352;
    QTest::newRow("spM0max") << limitNames.at(1) << 8388352;
    QTest::newRow("spM1min") << limitNames.at(2) << -1024;
    QTest::newRow("spM1max") << limitNames.at(3) << 1048576;
    QTest::newRow("spTraces") << QStringLiteral("spTraces") << 100000;
}

void ToolPanelTest::numbersAreGroupedTheFrenchWay()
{
    QFETCH(QString, name);
    QFETCH(int, value);
    ToolRig rig;
    auto *box = rig.widget<QSpinBox>(qPrintable(name));
    box->setValue(value);
    QVERIFY(grouped(value) != QString::number(value));
    QVERIFY(grouped(value) != QLocale::c().toString(value));
    QCOMPARE(box->text(), grouped(value) + box->suffix());
    QCOMPARE(box->suffix().isEmpty(), name != QLatin1String("spTraces"));
}

void ToolPanelTest::clearButtonTogglesOnEveryClick()
{
    ToolRig rig;
    rig.show();
    auto *clear = rig.widget<QPushButton>("btnClearTraces");
    QVERIFY(!clear->isChecked());
    for (const bool isChecked : {true, false, true}) {
        QTest::mouseClick(clear, Qt::LeftButton);
        QCOMPARE(clear->isChecked(), isChecked);
    }
}

QTEST_MAIN(ToolPanelTest)
#include "tst_tool_panel.moc"
