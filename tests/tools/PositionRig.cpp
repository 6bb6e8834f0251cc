#include "PositionRig.h"

#include "HostRegistry.h"
#include "ShippedChip.h"
#include "XmlProductIC.h"

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimerEvent>

PositionRig::PositionRig()
    : PluginRig(QStringLiteral(POSITION_MODE_FILE))
{
}

void PositionRig::init()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    link = RecordingLink();
    simulated = std::make_unique<workbench::SimulatedModule>(*chip, clock, QStringLiteral("sim/"));
    simulated->link().setRequestCostNs(0);
    open();
}

void PositionRig::cleanup()
{
    delete tool;
    simulated.reset();
}

void PositionRig::open(unsigned char motor)
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("position"), motor, &simulated->hostModule());
    HostRegistry::add(tool, QStringLiteral("sim/position/%1").arg(motor));
    show();
}

void PositionRig::record()
{
    for (const auto &described : simulated->chip().description().registers)
        link.values.insert(described.address, simulated->registerValue(described.name).value_or(0));
    simulated->hostModule().setLink(&link);
}

XmlValueRegister *PositionRig::reg(const QString &name) const
{
    return simulated->hostModule().getIcProduct(0)->getRegisterByName(name, true);
}

void PositionRig::tick() const
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(tool);
    QCOMPARE(timers.size(), 1);
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(tool, &event);
}

void PositionRig::run(int ms)
{
    clock.advance(ms * nsPerMs);
    tick();
}

void PositionRig::runUntilStandstill()
{
    constexpr int mostSeconds = 100;
    for (int i = 0; i < mostSeconds * 1000; ++i) {
        clock.advance(nsPerMs);
        simulated->catchUp();
        if (!simulated->chip().isMoving())
            break;
    }
    QVERIFY(!simulated->chip().isMoving());
    tick();
}

void PositionRig::enter(const QString &name, const QString &text, bool confirms) const
{
    QTest::keyClick(box(name), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box(name), text);
    if (confirms)
        QTest::keyClick(box(name), Qt::Key_Return);
}

void PositionRig::click(const QString &button) const
{
    QTest::mouseClick(tool->findChild<QPushButton *>(button), Qt::LeftButton);
}

QSpinBox *PositionRig::box(const QString &name) const
{
    return tool->findChild<QSpinBox *>(name);
}

QString PositionRig::label(const QString &name) const
{
    return tool->findChild<QLabel *>(name)->text();
}

QWidget *PositionRig::plot() const
{
    return tool->findChild<QWidget *>(QStringLiteral("profilePlot"));
}

QPolygonF PositionRig::profile() const
{
    return plot()->property("profile").value<QPolygonF>();
}

QString PositionRig::message() const
{
    return plot()->property("message").toString();
}
