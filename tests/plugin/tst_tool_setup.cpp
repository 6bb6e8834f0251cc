#include "EventWatch.h"
#include "HeadlessPlatform.h"
#include "ToolRig.h"

#include "ToolDetails.h"

#include <QSpinBox>
#include <QTest>
#include <QToolButton>

namespace {

const auto toolTitle = QStringLiteral("Synchronized drive");

} // namespace

class ToolSetupTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void cloneKeepsNameMotorAndModule_data();
    void cloneKeepsNameMotorAndModule();
    void newToolIsIdleAndTitled();
    void newToolForcesFrenchNumbers();
    void setUpKeepsItsOrder();
    void clonesAreIndependent();
    void panelSlotsAreConnectedOnce();
    void axisRangesReachTheSpinBoxes();
};

void ToolSetupTest::cloneKeepsNameMotorAndModule_data()
{
    QTest::addColumn<int>("motor");

    QTest::newRow("first") << 0;
    QTest::newRow("second") << 1;
    QTest::newRow("last") << 255;
}

void ToolSetupTest::cloneKeepsNameMotorAndModule()
{
    QFETCH(int, motor);
    ToolRig rig(static_cast<unsigned char>(motor));
    QCOMPARE(rig.tool()->name(), QStringLiteral("rig tool"));
    QCOMPARE(rig.tool()->motorNumber(), motor);
    QCOMPARE(rig.tool()->module(), static_cast<QVXLModuleInterface *>(rig.module()));
    QVERIFY(!rig.tool()->parentWidget());
    const ToolDetails details = ToolDetails::of(rig.tool());
    QCOMPARE(details.className, QStringLiteral("SynchronisedDriveTool"));
    QCOMPARE(static_cast<int>(details.type), 101);
    QCOMPARE(details.iconPath, QStringLiteral(":/Software-Icons/Data"));
}

void ToolSetupTest::newToolIsIdleAndTitled()
{
    ToolRig rig;
    QCOMPARE(rig.tool()->toolsName(false), toolTitle);
    QVERIFY(rig.tool()->windowTitle().isEmpty());
    QCOMPARE(rig.limits(), QStringLiteral("-256 256 -256 256"));
    QVERIFY(rig.timerIntervals().isEmpty());
    QVERIFY(rig.link.takeCalls().isEmpty());

    const QVariant flags = rig.tool()->property("dpWindowFlags");
    QCOMPARE(flags.userType(), static_cast<int>(QMetaType::UInt));
    QCOMPARE(flags.toUInt(), 18u);
    const QVariant noAnimation = rig.tool()->property("dpNoAnimate");
    QCOMPARE(noAnimation.userType(), static_cast<int>(QMetaType::Bool));
    QVERIFY(noAnimation.toBool());
    QCOMPARE(rig.widget<QWidget>("btnShowPosition")->property("Tool"),
             QVariant(QStringLiteral("Position mode")));
    QCOMPARE(rig.widget<QWidget>("btnShowRegister")->property("Tool"),
             QVariant(QStringLiteral("Register browser")));
}

void ToolSetupTest::newToolForcesFrenchNumbers()
{
    QLocale::setDefault(QLocale::c());
    ToolRig rig;
    QCOMPARE(QLocale(), QLocale(QLocale::French, QLocale::France));
    QVERIFY(rig.chart()->localizeNumbers());
}

void ToolSetupTest::setUpKeepsItsOrder()
{
    QLocale::setDefault(QLocale::c());
    const QSet<QByteArray> known{"dpWindowFlags", "dpNoAnimate", "RegList",
                                 "RampList",      "Tool",        "RunFp"};
    QStringList steps;
    const auto chartOf = [](QWidget *tool) {
        return tool->findChild<QtCharts::QChartView *>()->chart();
    };
    const auto follow = [&](QSpinBox *limit) {
        connect(limit, QOverload<int>::of(&QSpinBox::valueChanged), this, [&, limit](int now) {
            steps << QStringLiteral("%1 %2").arg(limit->objectName()).arg(now);
            QCOMPARE(chartOf(limit->window())->series().size(), 3);
        });
    };
    const auto look = [&](QWidget *tool, const QByteArray &property) {
        const bool isTitled = qobject_cast<ToolsInterface *>(tool)->toolsName(false) == toolTitle;
        QCOMPARE(isTitled, property != "locale");
        const bool hasChart = property == "Tool" || property == "RunFp";
        QCOMPARE(tool->findChildren<QtCharts::QChartView *>().size(), hasChart ? 1 : 0);
        if (property == "locale")
            QCOMPARE(QLocale().language(), QLocale::French);
        if (property == "dpNoAnimate") {
            for (const char *name : {"spM0min", "spM0max", "spM1min", "spM1max"})
                follow(tool->findChild<QSpinBox *>(QLatin1String(name)));
        }
        if (hasChart) {
            // The axes do not drive the spin boxes yet.
            const auto axes = chartOf(tool)->axes(Qt::Horizontal);
            auto *axis = qobject_cast<QtCharts::QValueAxis *>(axes.value(0));
            QCOMPARE(axis->max(), 256.0);
            axis->setMax(1024);
            axis->setMax(256);
        }
    };
    EventWatch watch([&](QObject *receiver, QEvent *event) {
        auto *widget = qobject_cast<QWidget *>(receiver);
        QByteArray property;
        if (event->type() == QEvent::DynamicPropertyChange)
            property = static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName();
        else if (event->type() == QEvent::LocaleChange && receiver->inherits("ToolsInterface"))
            property = "locale";
        if (!widget || !(known.contains(property) || property == "locale"))
            return;
        steps << widget->objectName() + QLatin1Char(' ') + QString::fromLatin1(property);
        look(widget->window(), property);
    });
    ToolRig rig;
    const QString tool = QStringLiteral("SynchronisedDriveTool ");
    const QStringList expected{
        tool + QStringLiteral("locale"), tool + QStringLiteral("dpWindowFlags"),
        tool + QStringLiteral("dpNoAnimate"), QStringLiteral("btnShowRegister RegList"),
        QStringLiteral("btnShowPosition RampList"),
        // Each lower limit pushes the upper one to where it is wanted.
        QStringLiteral("spM0max 256"), QStringLiteral("spM0min -256"),
        QStringLiteral("spM1max 256"), QStringLiteral("spM1min -256"),
        QStringLiteral("btnShowPosition Tool"), QStringLiteral("btnShowRegister Tool"),
        QStringLiteral("pbStart RunFp")};
    QCOMPARE(steps, expected);
}

void ToolSetupTest::clonesAreIndependent()
{
    ToolRig one(0);
    ToolRig two(1);
    QVERIFY(one.tool() != two.tool());
    QVERIFY(one.chart() != two.chart());
    one.tool()->showPlugin();
    QCOMPARE(one.timerIntervals(), QList<int>{100});
    QVERIFY(two.timerIntervals().isEmpty());
    one.setTarget({100, 50});
    one.setLimits(-1024, 1024, -2048, 2048);
    one.sample(3, 4);
    one.updateTick();
    QCOMPARE(two.target()->at(0), QPointF(0, 0));
    QCOMPARE(two.limits(), QStringLiteral("-256 256 -256 256"));
    QCOMPARE(two.actual()->at(0), QPointF(0, 0));
    QVERIFY(two.link.takeCalls().isEmpty());

    two.call("on_pbStart_clicked");
    QCOMPARE(two.timerIntervals(), (QList<int>{0, 50}));
    QCOMPARE(one.timerIntervals(), QList<int>{100});
    one.deleteTool();
    two.link.takeCalls();
    QVERIFY(two.sample(5, 6));
    QVERIFY(two.updateTick());
    QCOMPARE(two.actual()->at(0), QPointF(5, 6));
}

void ToolSetupTest::panelSlotsAreConnectedOnce()
{
    ToolRig rig;
    rig.show();
    rig.link.takeCalls();
    rig.widget<QToolButton>("pbStop")->click();
    const QStringList stop{QStringLiteral("write M0_XTARGET m0 0"),
                           QStringLiteral("write M1_XTARGET m0 0"),
                           QStringLiteral("write RAMPMODE m0 0")};
    QCOMPARE(rig.takeWrites(), stop);
    rig.widget<QToolButton>("pbStart")->click();
    QCOMPARE(rig.takeWrites().filter(QStringLiteral("RAMPMODE m0 768")).size(), 1);

    int requests = 0;
    connect(rig.tool(), &PluginInterface::signalDeviceTreeOperation, this,
            [&requests] { ++requests; });
    for (const char *name : {"btnShowRegister", "btnShowPosition"}) {
        auto *button = rig.widget<QAbstractButton>(name);
        button->setEnabled(true);
        button->click();
    }
    QCOMPARE(requests, 1 + 2);

    // An odd value shows that each limit has its own handler.
    rig.setLimits(-1000, 1000, -2000, 2000);
    QCOMPARE(rig.limits(), QStringLiteral("-1024 1024 -2048 2048"));
    rig.widget<QAbstractButton>("btnZoomIn")->click();
    const int narrowed = rig.widget<QSpinBox>("spM0max")->value();
    QVERIFY(narrowed < 1024);
    rig.widget<QAbstractButton>("btnZoomOut")->click();
    QVERIFY(rig.widget<QSpinBox>("spM0max")->value() > narrowed);
    rig.widget<QAbstractButton>("btnClearTraces")->click();
    QCOMPARE(rig.trace()->count(), 1);

    QTest::mouseClick(rig.view()->viewport(), Qt::LeftButton, {}, rig.pixelOf(QPointF(100, 0)));
    QVERIFY(rig.target()->at(0) != QPointF(0, 0));
}

void ToolSetupTest::axisRangesReachTheSpinBoxes()
{
    ToolRig rig;
    rig.axisX()->setRange(-512, 768);
    rig.axisY()->setRange(-1024, 1280);
    QCOMPARE(rig.limits(), QStringLiteral("-512 768 -1024 1280"));
    rig.axisX()->setRange(-1e300, 1e300);
    rig.axisY()->setRange(-1e10, 1e10);
    QCOMPARE(rig.limits(), QStringLiteral("-8388352 8388352 -8388352 8388352"));
    QCOMPARE(rig.axisX()->max(), 8388352.0);
    QCOMPARE(rig.axisY()->min(), -8388352.0);
}

QTEST_MAIN(ToolSetupTest)
#include "tst_tool_setup.moc"
