#include "FaultRig.h"

#include "ShippedChip.h"
#include "ToolRig.h"

#include "XmlProductIC.h"
#include "XmlRegisterSet.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QDynamicPropertyChangeEvent>
#include <QMenu>
#include <QSpinBox>
#include <QTimer>
#include <QTimerEvent>
#include <QToolButton>

using workbench::FaultActions;

namespace {

constexpr qint64 nsPerMs = 1000000;
constexpr int linkedMode = 768;
/// A target register holds 24 bits.
constexpr int positionBits = 0xFFFFFF;
/// Far above what any event needs, nested events included.
constexpr int mostRequestsPerEvent = 5000;

const char *const rampNames[] = {"VMAX", "AMAX", "DMAX", "V1", "A1", "D1", "V2", "A2", "D2"};

/// What a target register holds of a value written to it, which is its lower bits with their sign.
int inRegister(int value)
{
    constexpr int signBit = (positionBits + 1) / 2;
    return ((value & positionBits) ^ signBit) - signBit;
}

workbench::ChipDescription shippedChip()
{
    const auto chip = readShippedChip();
    if (!chip)
        qFatal("the chip description is missing");
    return *chip;
}

QString nextModuleKey()
{
    static int number = 0;
    return QStringLiteral("faulty-%1/").arg(++number);
}

void deleteRegisters(QVXLModuleInterface &module, const workbench::ChipDescription &chip)
{
    XmlProductIC *product = module.getIcProduct(0);
    for (const workbench::RegisterDescription &described : chip.registers) {
        for (const workbench::FieldDescription &field : described.fields)
            delete product->getRegisterFieldByIdentifier(field.identifier, false, false);
        delete product->getRegisterByName(described.name, true);
    }
}

} // namespace

bool WatchedLink::readRegister(unsigned int address, unsigned char motor, int *value)
{
    enter(isStepRead && isStepRead(address));
    const bool isAnswered = next.readRegister(address, motor, value);
    if (afterRead)
        afterRead(address, isAnswered ? std::optional<int>(*value) : std::nullopt);
    return isAnswered;
}

bool WatchedLink::writeRegister(unsigned int address, unsigned char motor, int value)
{
    if (beforeWrite)
        beforeWrite(address, value);
    enter(true);
    const bool isWritten = next.writeRegister(address, motor, value);
    if (afterWrite)
        afterWrite(address, value);
    return isWritten;
}

bool WatchedLink::userFunction(unsigned char *a, unsigned char *b, unsigned char function,
                               unsigned char arg, unsigned char motor, unsigned int *reply)
{
    enter(true);
    return next.userFunction(a, b, function, arg, motor, reply);
}

void WatchedLink::enter(bool isStep)
{
    // Copies: an action may put another one in its place.
    const auto request = inRequest;
    const auto step = inStep;
    const int number = requests++;
    if (request)
        request(number);
    if (!isStep)
        return;
    const int stepNumber = steps++;
    if (step)
        step(stepNumber);
}

FaultRig::FaultRig(quint32 seed)
    : module(shippedChip(), clock, nextModuleKey())
    , chipSide(module.link())
    , faulty(chipSide, clock, module.chip().description().axisAddresses(), seed)
    , hostSide(faulty)
    , known(module.chip().description().axisAddresses())
    , rampMode(address("RAMPMODE"))
{
    wire();
    openTool();
}

FaultRig::~FaultRig()
{
    faulty.switchOffAll();
    deleteTool();
    module.hostModule().setLink(nullptr);
}

void FaultRig::wire()
{
    FaultActions actions;
    actions.resetChip = [this](qint64 ns) {
        module.chip().advanceTo(ns);
        module.chip().reset();
    };
    actions.deleteRegisters = [this] {
        deleteRegisters(module.hostModule(), module.chip().description());
    };
    actions.deleteWidgets = [this] {
        if (working)
            qDeleteAll(registerWidgets());
    };
    faulty.setActions(actions);
    hostSide.beforeWrite = [this](unsigned int at, int value) { hostWrites(at, value); };
    hostSide.afterWrite = [this](unsigned int at, int value) { hostWrote(at, value); };
    hostSide.afterRead = [this](unsigned int at, std::optional<int> answer) {
        hostRead(at, answer);
    };
    hostSide.isStepRead = [this](unsigned int at) {
        return known.velocity[0] == at || known.velocity[1] == at;
    };
    module.hostModule().setLink(&hostSide);
}

void FaultRig::openTool()
{
    deleteTool();
    working = toolPrototype()->clone(QStringLiteral("faulty tool"), 0, &module.hostModule());
    watchedTool = working.data();
    working->installEventFilter(this);
    startButton()->installEventFilter(this);
    pathLength = 12;
    lastFlightIndex = flightIndex();
    forgetWrittenTarget();
    forgetStop();
}

void FaultRig::deleteTool()
{
    delete working.data();
}

void FaultRig::show()
{
    working->resize(900, 600);
    working->show();
    QCoreApplication::sendPostedEvents();
    working->showPlugin();
}

void FaultRig::hide()
{
    working->hide();
    working->hidePlugin();
}

QToolButton *FaultRig::startButton() const
{
    return widget<QToolButton>("pbStart");
}

QtCharts::QXYSeries *FaultRig::series(int index) const
{
    return qobject_cast<QtCharts::QXYSeries *>(view()->chart()->series().value(index));
}

QList<XmlRegisterWidget *> FaultRig::registerWidgets() const
{
    return working->findChildren<XmlRegisterWidget *>();
}

bool FaultRig::isIdle() const
{
    return startButton()->isEnabled();
}

int FaultRig::flightIndex() const
{
    return startButton()->property("RunFp").toInt();
}

void FaultRig::setLimits(int size) const
{
    for (const char *name : {"spM0max", "spM1max"})
        widget<QSpinBox>(name)->setValue(size);
    for (const char *name : {"spM0min", "spM1min"})
        widget<QSpinBox>(name)->setValue(-size);
}

void FaultRig::pick(const QPointF &point)
{
    forgetStop();
    QMetaObject::invokeMethod(working, "setTargetPosition", Q_ARG(QPointF, point),
                              Q_ARG(QPoint, QPoint()));
}

void FaultRig::pressStart()
{
    hostSide.reset();
    if (isIdle())
        ++startsAllowed;
    startButton()->click();
}

void FaultRig::pressStop()
{
    forgetStop();
    hostSide.reset();
    const QPointF here = actual();
    const QPointer<FaultRig> self(this);
    const QPointer<ToolsInterface> pressed = working;
    widget<QToolButton>("pbStop")->click();
    if (self && pressed && flightIndex() != pathLength)
        violation(QStringLiteral("stop leaves the flight path at %1").arg(flightIndex()));
    if (self && pressed && target() == here)
        stopTarget = here;
}

void FaultRig::runFlightPath()
{
    forgetStop();
    if (pathLength == 0)
        pathLength = 12;
    if (isIdle())
        ++startsAllowed;
    hostSide.reset();
    startButton()->menu()->actions().at(0)->trigger();
}

bool FaultRig::inDialog(const std::function<void(QDialog *)> &act, bool accepts)
{
    bool hasActed = false;
    QObject context;
    QTimer::singleShot(0, &context, [&] {
        const QPointer<QDialog> dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        hasActed = true;
        act(dialog);
        if (dialog && accepts)
            dialog->accept();
        else if (dialog)
            dialog->reject();
    });
    startButton()->menu()->actions().at(1)->trigger();
    return hasActed;
}

QList<int> FaultRig::timerIntervals() const
{
    QList<int> intervals;
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(working);
    for (const auto &timer : timers)
        intervals << timer.interval;
    std::sort(intervals.begin(), intervals.end());
    return intervals;
}

void FaultRig::deliver(int interval, int otherInterval)
{
    if (!working)
        return;
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(working);
    for (const auto &timer : timers) {
        if (timer.interval != interval && timer.interval != otherInterval)
            continue;
        if (ticksUnderWay++ == 0)
            hostSide.reset();
        QTimerEvent event(timer.timerId);
        isDelivering = true;
        QCoreApplication::sendEvent(working, &event);
        --ticksUnderWay;
        return;
    }
}

void FaultRig::round(int stepMs)
{
    constexpr int samples = 5;
    for (int i = 0; i < samples; ++i) {
        clock.advance(stepMs * nsPerMs / samples);
        sampleTick();
    }
    updateTick();
}

void FaultRig::rounds(int count)
{
    for (int i = 0; i < count && working; ++i)
        round();
}

bool FaultRig::settle()
{
    // In longer and longer steps, for moves across the whole range.
    for (int i = 0; i < 3000 && !isIdle(); ++i)
        round(i < 500 ? 50 : i < 1500 ? 1000 : 20000);
    return isIdle();
}

bool FaultRig::chipComesToRest()
{
    module.catchUp();
    for (int i = 0; i < 2000 && module.chip().isMoving(); ++i) {
        clock.advance((i < 500 ? 50 : 20000) * nsPerMs);
        module.catchUp();
    }
    return !module.chip().isMoving();
}

QPoint FaultRig::chipPosition()
{
    module.catchUp();
    return {module.chip().position(0), module.chip().position(1)};
}

int FaultRig::chipValue(const char *name)
{
    return module.registerValue(QLatin1String(name)).value_or(-1);
}

unsigned int FaultRig::address(const char *name)
{
    return module.chip().description().findRegister(QLatin1String(name))->address;
}

void FaultRig::writeFromElsewhere(const char *name, int value)
{
    hostSide.reset();
    XmlValueRegister *reg =
        module.hostModule().getIcProduct(0)->getRegisterByName(QLatin1String(name), true);
    foreignWrite = address(name);
    module.hostModule().writeChannelRegister(reg, 0, value);
    foreignWrite.reset();
    if (known.target[0] == address(name) || known.target[1] == address(name))
        forgetWrittenTarget();
}

void FaultRig::repairRamps()
{
    for (const char *axis : {"M0_", "M1_"}) {
        for (const char *setting : rampNames) {
            const QByteArray name = QByteArray(axis) + setting;
            const auto *described = module.chip().description().findRegister(QLatin1String(name));
            if (chipValue(name) != described->resetValue)
                writeFromElsewhere(name, described->resetValue);
        }
    }
}

void FaultRig::postInStep(int number, const std::function<void()> &action)
{
    hostSide.reset();
    hostSide.inStep = [this, number, action](int step) {
        if (step != number)
            return;
        hostSide.inStep = nullptr;
        QMetaObject::invokeMethod(this, action, Qt::QueuedConnection);
    };
}

void FaultRig::callInRequest(int number, const std::function<void()> &action)
{
    hostSide.reset();
    hostSide.inRequest = [this, number, action](int request) {
        if (request != number)
            return;
        hostSide.inRequest = nullptr;
        action();
    };
}

std::optional<QPoint> FaultRig::writtenTarget() const
{
    if (!targetWrites[0] || !targetWrites[1])
        return std::nullopt;
    return QPoint(*targetWrites[0], *targetWrites[1]);
}

void FaultRig::forgetWrittenTarget()
{
    targetWrites[0].reset();
    targetWrites[1].reset();
}

QPoint FaultRig::asTarget(const QPointF &point)
{
    return {inRegister(static_cast<int>(point.x())), inRegister(static_cast<int>(point.y()))};
}

QStringList FaultRig::takeViolations()
{
    const QStringList taken = violations;
    violations.clear();
    return taken;
}

void FaultRig::violation(const QString &text)
{
    if (violations.size() < 20)
        violations << text;
}

void FaultRig::hostWrites(unsigned int at, int value)
{
    if (hostSide.count() > mostRequestsPerEvent)
        violation(QStringLiteral("an event makes requests without end"));
    const auto *described = module.chip().description().findRegister(at);
    if (!described || described->access == workbench::RegisterAccess::ReadOnly)
        violation(QStringLiteral("write to the read-only register at %1").arg(at));
    if (foreignWrite == at) {
        foreignWrite.reset();
        return;
    }
    if (at == rampMode && value == linkedMode && ++startsSeen > startsAllowed)
        violation(QStringLiteral("a start sequence that nobody asked for"));
    for (int axis = 0; axis < 2 && stopTarget; ++axis) {
        const double wanted = axis == 0 ? stopTarget->x() : stopTarget->y();
        if (known.target[std::size_t(axis)] == at &&
            (value ^ static_cast<int>(wanted)) & positionBits)
            violation(QStringLiteral("target %1 of axis %2 written after stop at %3")
                          .arg(value)
                          .arg(axis)
                          .arg(wanted));
    }
}

void FaultRig::hostWrote(unsigned int at, int value)
{
    for (int axis = 0; axis < 2; ++axis) {
        if (known.target[std::size_t(axis)] == at)
            targetWrites[axis] = inRegister(value);
    }
}

void FaultRig::hostRead(unsigned int at, std::optional<int> answer)
{
    for (int axis = 0; axis < 2; ++axis) {
        if (known.velocity[std::size_t(axis)] == at)
            velocityAnswers[axis] = answer;
    }
}

/// A move ends, and a flight path goes on, only behind two velocities that were answered with 0.
void FaultRig::buttonChanged(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange && isIdle()) {
        ++endsSeen;
        if ((velocityAnswers[0] != 0 || velocityAnswers[1] != 0))
            violation(QStringLiteral("a move ends without both velocities at 0"));
    } else if (event->type() == QEvent::EnabledChange) {
        velocityAnswers[0].reset();
        velocityAnswers[1].reset();
    }
    if (event->type() != QEvent::DynamicPropertyChange ||
        static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() != "RunFp")
        return;
    const int index = flightIndex();
    if (index < 0 || index > pathLength)
        violation(QStringLiteral("flight path index %1 of %2").arg(index).arg(pathLength));
    if (index == lastFlightIndex + 1 && index < pathLength) {
        ++startsAllowed;
        forgetStop();
    }
    lastFlightIndex = index;
}

bool FaultRig::eventFilter(QObject *object, QEvent *event)
{
    // The tool may be half gone, and then it is no tool any more.
    if (object != watchedTool) {
        if (qobject_cast<ToolsInterface *>(watchedTool.data()) && object == startButton())
            buttonChanged(event);
        return false;
    }
    if (event->type() != QEvent::Timer)
        return false;
    const bool isOurs = isDelivering;
    isDelivering = false;
    return !isOurs;
}
