#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

namespace {

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class ToolTargetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void aPickMovesTheMarkerAndWritesNothing();
    void theSamePickAgainChangesNothing();
    void picksAreComparedWithTolerance_data();
    void picksAreComparedWithTolerance();
    void aClickInTheChartIsAPick();
    void aTargetThatIsNoPointIsLeftOut_data();
    void aTargetThatIsNoPointIsLeftOut();
};

void ToolTargetTest::aPickMovesTheMarkerAndWritesNothing()
{
    ToolRig rig;
    rig.takeCalls();
    QVERIFY(rig.setTarget(QPointF(12, -34)));
    QCOMPARE(rig.target()->pointsVector(), QVector<QPointF>{QPointF(12, -34)});
    QCOMPARE(rig.target()->property("NewPt"), QVariant(true));
    QCOMPARE(rig.takeCalls(), QStringList());
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
    QVERIFY(
        QMetaObject::invokeMethod(rig.tool(), "setTargetPosition", Q_ARG(QPointF, QPointF(5, 6))));
    QCOMPARE(rig.target()->at(0), QPointF(5, 6));
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
}

void ToolTargetTest::theSamePickAgainChangesNothing()
{
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(12, -34));
    rig.updateTick();
    QCOMPARE(rig.target()->property("NewPt"), QVariant(false));
    QSignalSpy replaced(rig.target(), &QtCharts::QXYSeries::pointReplaced);
    rig.setTarget(QPointF(12, -34));
    QVERIFY(replaced.isEmpty());
    QCOMPARE(rig.target()->property("NewPt"), QVariant(false));
}

void ToolTargetTest::picksAreComparedWithTolerance_data()
{
    QTest::addColumn<QPointF>("before");
    QTest::addColumn<QPointF>("picked");
    QTest::addColumn<bool>("isNew");
    const QPointF far(1e6, -1e6);
    QTest::newRow("within the tolerance") << far << far * (1 + 5e-13) << false;
    QTest::newRow("beyond it") << far << far * (1 + 2e-12) << true;
    QTest::newRow("only x differs") << far << QPointF(1e6 + 1, -1e6) << true;
    QTest::newRow("only y differs") << far << QPointF(1e6, -1e6 + 1) << true;
    QTest::newRow("near zero") << QPointF(0, 0) << QPointF(5e-13, -5e-13) << false;
    QTest::newRow("off zero") << QPointF(0, 0) << QPointF(2e-12, 0) << true;
    QTest::newRow("zero from near it") << QPointF(2e-12, 5) << QPointF(0, 5) << true;
    QTest::newRow("opposite signs") << QPointF(1, 1) << QPointF(-1, 1) << true;
    QTest::newRow("tiny ones") << QPointF(1e-13, 0) << QPointF(2e-13, 0) << true;
}

void ToolTargetTest::picksAreComparedWithTolerance()
{
    QFETCH(QPointF, before);
    QFETCH(QPointF, picked);
    QFETCH(bool, isNew);
    ToolRig rig;
    rig.target()->replace(0, before);
    rig.setTarget(picked);
    QCOMPARE(rig.target()->property("NewPt").toBool(), isNew);
    const QPointF now = rig.target()->at(0);
    const QPointF expected = isNew ? picked : before;
    QVERIFY(now.x() == expected.x() && now.y() == expected.y());
}

void ToolTargetTest::aClickInTheChartIsAPick()
{
    ToolRig rig;
    rig.setLimits(-4096, 4096, -8192, 8192);
    rig.show();
    rig.takeCalls();
    const QPoint at = rig.chart()->plotArea().center().toPoint() + QPoint(61, -47);
    const QPointF value = rig.chart()->mapToValue(at);
    QTest::mouseClick(rig.view()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QCOMPARE(rig.target()->at(0), QPointF(value.toPoint()));
    QVERIFY(rig.target()->property("NewPt").toBool());
    QCOMPARE(rig.takeCalls(), QStringList());
}

void ToolTargetTest::aTargetThatIsNoPointIsLeftOut_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::newRow("nan x") << QPointF(notANumber, 1);
    QTest::newRow("nan y") << QPointF(1, notANumber);
    QTest::newRow("inf") << QPointF(infinity, 1);
    QTest::newRow("-inf") << QPointF(1, -infinity);
}

void ToolTargetTest::aTargetThatIsNoPointIsLeftOut()
{
    QFETCH(QPointF, point);
    ToolRig rig;
    rig.tool()->showPlugin();
    rig.setTarget(QPointF(7, 8));
    rig.updateTick();
    rig.takeCalls();
    rig.setTarget(point, QPoint(1, 0));
    QCOMPARE(rig.target()->pointsVector(), QVector<QPointF>{QPointF(7, 8)});
    rig.updateTick();
    QCOMPARE(rig.takeWrites(), QStringList());
    rig.call("on_pbStart_clicked");
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 7);
    QCOMPARE(rig.registerValue(QStringLiteral("M1_XTARGET")), 8);
}

QTEST_MAIN(ToolTargetTest)
#include "tst_tool_target.moc"
