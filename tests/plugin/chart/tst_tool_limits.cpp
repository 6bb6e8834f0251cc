#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QSpinBox>
#include <QTest>

#include <limits>

namespace {

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

} // namespace

class ToolLimitsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void aPushWidensTheAxisByATick_data();
    void aPushWidensTheAxisByATick();
    void aPushAlsoCountsWithTheSameTarget();
    void aPushIsTruncatedAndNotRounded();
    void aDragPastTheRightEdgeWidensTheAxis();
    void aPushAtTheEndOfTheWorldStaysThere();
    void limitsSnapToTheGrid_data();
    void limitsSnapToTheGrid();
    void aLimitTypedKeyByKeySnapsToTheGrid_data();
    void aLimitTypedKeyByKeySnapsToTheGrid();
    void aPastedLimitSnapsToTheGrid_data();
    void aPastedLimitSnapsToTheGrid();
    void theArrowKeysStepByOneGridStep();
    void limitsKeepTheirDistance();
    void extremeLimitsAreSurvived();
};

void ToolLimitsTest::aPushWidensTheAxisByATick_data()
{
    QTest::addColumn<QPoint>("outer");
    QTest::addColumn<QString>("limits");
    QTest::newRow("right") << QPoint(1, 0) << QStringLiteral("0 4608 0 8192");
    QTest::newRow("left") << QPoint(-30, 0) << QStringLiteral("-512 4096 0 8192");
    QTest::newRow("up") << QPoint(0, -1) << QStringLiteral("0 4096 0 9216");
    QTest::newRow("down") << QPoint(0, 30) << QStringLiteral("0 4096 -1024 8192");
    QTest::newRow("right and down") << QPoint(2, 2) << QStringLiteral("0 4608 -1024 8192");
    QTest::newRow("left and up") << QPoint(-2, -2) << QStringLiteral("-512 4096 0 9216");
    QTest::newRow("nowhere") << QPoint(0, 0) << QStringLiteral("0 4096 0 8192");
    QTest::newRow("extremes") << QPoint(lowest, highest) << QStringLiteral("-512 4096 -1024 8192");
}

void ToolLimitsTest::aPushWidensTheAxisByATick()
{
    QFETCH(QPoint, outer);
    QFETCH(QString, limits);
    ToolRig rig;
    rig.setLimits(0, 4096, 0, 8192);
    rig.setTarget(QPointF(5, 5), outer);
    QCOMPARE(rig.limits(), limits);
    const QStringList wanted = limits.split(QLatin1Char(' '));
    QCOMPARE(rig.axisX()->min(), wanted.at(0).toDouble());
    QCOMPARE(rig.axisX()->max(), wanted.at(1).toDouble());
    QCOMPARE(rig.axisY()->min(), wanted.at(2).toDouble());
    QCOMPARE(rig.axisY()->max(), wanted.at(3).toDouble());
}

void ToolLimitsTest::aPushAlsoCountsWithTheSameTarget()
{
    ToolRig rig;
    rig.setLimits(0, 4096, 0, 4096);
    rig.setTarget(QPointF(0, 0), QPoint(1, 0));
    QVERIFY(!rig.target()->property("NewPt").toBool());
    QCOMPARE(rig.limits(), QStringLiteral("0 4608 0 4096"));
}

void ToolLimitsTest::aPushIsTruncatedAndNotRounded()
{
    // 427 tick steps of 512.6 units each: rounded, the new limits would miss the grid by one.
    constexpr int span = 855 * 256;
    ToolRig rig;
    rig.setLimits(0, span, 0, span);
    rig.axisX()->setTickCount(428);
    rig.axisY()->setTickCount(428);
    rig.setTarget(QPointF(5, 5), QPoint(-1, 1));
    QCOMPARE(rig.limits(), QStringLiteral("-512 218880 -512 218880"));
    rig.setLimits(-span, 0, -span, 0);
    rig.setTarget(QPointF(5, 5), QPoint(1, -1));
    QCOMPARE(rig.limits(), QStringLiteral("-218880 512 -218880 512"));
}

void ToolLimitsTest::aDragPastTheRightEdgeWidensTheAxis()
{
    ToolRig rig;
    rig.setLimits(0, 4096, 0, 4096);
    rig.show();
    QWidget *viewport = rig.view()->viewport();
    const QRect plot = rig.chart()->plotArea().toRect();
    const int y = plot.center().y();
    const auto drag = [&](int x) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, y), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(viewport, &move);
    };
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, plot.center());
    drag(plot.right() + 5);
    QCOMPARE(rig.limits(), QStringLiteral("0 4096 0 4096"));
    drag(plot.right() + 14);
    QCOMPARE(rig.limits(), QStringLiteral("0 4608 0 4096"));
    QCOMPARE(rig.axisX()->max(), 4608.0);
    drag(plot.right() + 13);
    QCOMPARE(rig.limits(), QStringLiteral("0 4608 0 4096"));
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, plot.center());
}

void ToolLimitsTest::aPushAtTheEndOfTheWorldStaysThere()
{
    ToolRig rig;
    rig.setLimits(-8388352, 8388352, -8388352, 8388352);
    const QString widest = rig.limits();
    QCOMPARE(widest, QStringLiteral("-8388352 8388352 -8388352 8388352"));
    rig.setTarget(QPointF(1, 1), QPoint(1, 1));
    rig.setTarget(QPointF(1, 1), QPoint(-1, -1));
    QCOMPARE(rig.limits(), widest);
    QCOMPARE(rig.axisX()->max(), 8388352.0);
    QCOMPARE(rig.axisY()->min(), -8388352.0);
}

void ToolLimitsTest::limitsSnapToTheGrid_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::newRow("1000") << 1000 << 768 << 1024;
    QTest::newRow("1") << 1 << 0 << 256;
    QTest::newRow("255") << 255 << 0 << 256;
    QTest::newRow("256") << 256 << 256 << 256;
    QTest::newRow("257") << 257 << 256 << 512;
    QTest::newRow("0") << 0 << 0 << 0;
    QTest::newRow("-1") << -1 << -256 << 256;
    QTest::newRow("-10") << -10 << -256 << 256;
    QTest::newRow("-255") << -255 << -256 << 256;
    QTest::newRow("-256") << -256 << -256 << -256;
    QTest::newRow("-266") << -266 << -512 << 0;
    QTest::newRow("-1000") << -1000 << -1024 << -512;
}

void ToolLimitsTest::limitsSnapToTheGrid()
{
    QFETCH(int, value);
    QFETCH(int, lower);
    QFETCH(int, upper);
    for (const char *axis : {"spM0", "spM1"}) {
        ToolRig rig;
        rig.setLimits(-8192, 8192, -8192, 8192);
        auto *min = rig.widget<QSpinBox>(QByteArray(axis) + "min");
        auto *max = rig.widget<QSpinBox>(QByteArray(axis) + "max");
        const bool isX = axis[3] == '0';
        min->setValue(value);
        QCOMPARE(min->value(), lower);
        QCOMPARE(max->minimum(), lower + 512);
        QCOMPARE((isX ? rig.axisX() : rig.axisY())->min(), double(lower));
        min->setValue(-8192);
        max->setValue(value);
        QCOMPARE(max->value(), upper);
        QCOMPARE(min->maximum(), upper - 512);
        QCOMPARE((isX ? rig.axisX() : rig.axisY())->max(), double(upper));
        QCOMPARE((isX ? rig.axisY() : rig.axisX())->max(), 8192.0);
    }
}

void ToolLimitsTest::aLimitTypedKeyByKeySnapsToTheGrid_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("shown");
    QTest::newRow("1000 below") << QByteArray("spM0min") << QStringLiteral("1000") << 768;
    QTest::newRow("1000 above") << QByteArray("spM0max") << QStringLiteral("1000") << 1024;
    QTest::newRow("-10 above") << QByteArray("spM0max") << QStringLiteral("-10") << 256;
    QTest::newRow("axis 1, 1000 below") << QByteArray("spM1min") << QStringLiteral("1000") << 768;
    QTest::newRow("axis 1, -3000 above")
        << QByteArray("spM1max") << QStringLiteral("-3000") << -2560;
}

void ToolLimitsTest::aLimitTypedKeyByKeySnapsToTheGrid()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);
    QFETCH(int, shown);
    ToolRig rig;
    rig.setLimits(-8192, 8192, -8192, 8192);
    rig.show();
    auto *box = rig.widget<QSpinBox>(name);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(box->value(), shown);
}

void ToolLimitsTest::aPastedLimitSnapsToTheGrid_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("shown");
    QTest::newRow("1000 below") << QByteArray("spM0min") << QStringLiteral("1000") << 768;
    QTest::newRow("1000 above") << QByteArray("spM0max") << QStringLiteral("1000") << 1024;
    QTest::newRow("-10 above") << QByteArray("spM0max") << QStringLiteral("-10") << 256;
    QTest::newRow("axis 1 below") << QByteArray("spM1min") << QStringLiteral("-10") << -256;
    QTest::newRow("axis 1 above") << QByteArray("spM1max") << QStringLiteral("-300") << 0;
}

void ToolLimitsTest::aPastedLimitSnapsToTheGrid()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);
    QFETCH(int, shown);
    ToolRig rig;
    rig.setLimits(-8192, 8192, -8192, 8192);
    rig.show();
    auto *box = rig.widget<QSpinBox>(name);
    box->setFocus();
    box->selectAll();
    QGuiApplication::clipboard()->setText(text);
    QTest::keySequence(box, QKeySequence(QKeySequence::Paste));
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(box->value(), shown);
    QCOMPARE(box->cleanText(), QLocale(QLocale::French).toString(shown));
}

void ToolLimitsTest::theArrowKeysStepByOneGridStep()
{
    ToolRig rig;
    rig.show();
    auto *box = rig.widget<QSpinBox>("spM0max");
    QTest::keyClick(box, Qt::Key_Up);
    QCOMPARE(rig.axisX()->max(), 512.0);
    QTest::keyClick(box, Qt::Key_Down);
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(rig.axisX()->max(), 256.0);
}

void ToolLimitsTest::limitsKeepTheirDistance()
{
    ToolRig rig;
    rig.setLimits(0, 4096, 0, 4096);
    for (const char *axis : {"spM0", "spM1"}) {
        auto *min = rig.widget<QSpinBox>(QByteArray(axis) + "min");
        auto *max = rig.widget<QSpinBox>(QByteArray(axis) + "max");
        min->setValue(4000);
        QCOMPARE(min->value(), 3584);
        min->setValue(0);
        max->setValue(1);
        QCOMPARE(max->value(), 512);
    }
    QCOMPARE(rig.axisX()->max(), 512.0);
    QCOMPARE(rig.axisY()->max(), 512.0);
}

void ToolLimitsTest::extremeLimitsAreSurvived()
{
    ToolRig rig;
    for (const char *slot : {"on_spM0min_valueChanged", "on_spM0max_valueChanged",
                             "on_spM1min_valueChanged", "on_spM1max_valueChanged"}) {
        for (int value : {lowest, lowest + 1, lowest + 255, highest, highest - 255, 1, -1})
            QVERIFY(QMetaObject::invokeMethod(rig.tool(), slot, Q_ARG(int, value)));
    }
    ToolRig other;
    for (const char *name : {"spM0min", "spM0max", "spM1min", "spM1max"}) {
        for (int value : {lowest, highest})
            other.widget<QSpinBox>(name)->setValue(value);
        QCOMPARE(other.widget<QSpinBox>(name)->value() % 256, 0);
    }
}

QTEST_MAIN(ToolLimitsTest)
#include "tst_tool_limits.moc"
