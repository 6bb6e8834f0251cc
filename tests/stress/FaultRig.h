#pragma once

#include "Clock.h"
#include "FaultyLink.h"
#include "SimulatedModule.h"
#include "ToolsInterface.h"

#include <QPointer>
#include <QtCharts/QChartView>
#include <QtCharts/QScatterSeries>

#include <functional>
#include <optional>

class QToolButton;
class XmlRegisterWidget;

/// Writes down what the host asks for, answered or not, and lets things happen in the middle of a
/// request. Stands in front of the link that is given.
class WatchedLink : public ModuleLink
{
public:
    explicit WatchedLink(ModuleLink &link)
        : next(link)
    {
    }

    /// Called before a request is passed on, with its number since the last reset().
    std::function<void(int)> inRequest;
    /// As inRequest, but counts neither the reads of the ramp check nor of anything else that
    /// does not belong to a move: writes, user functions and what `isStepRead` accepts.
    std::function<void(int)> inStep;
    std::function<bool(unsigned int)> isStepRead;
    /// Called with each write before it is passed on.
    std::function<void(unsigned int, int)> beforeWrite;
    /// Called with each write that was passed on, whatever has become of it.
    std::function<void(unsigned int, int)> afterWrite;
    /// Called with each answer to a read; nothing for a read that failed.
    std::function<void(unsigned int, std::optional<int>)> afterRead;

    void reset()
    {
        requests = 0;
        if (!isCounting)
            steps = 0;
    }
    /// Lets the number of the step go on over several sequences.
    void keepCounting(bool keeps) { isCounting = keeps; }
    void disarm() { inRequest = inStep = nullptr; }
    int count() const { return requests; }

    bool readRegister(unsigned int address, unsigned char motor, int *value) override;
    bool writeRegister(unsigned int address, unsigned char motor, int value) override;
    bool userFunction(unsigned char *a, unsigned char *b, unsigned char function, unsigned char arg,
                      unsigned char motor, unsigned int *reply) override;

private:
    void enter(bool isStep);

    ModuleLink &next;
    int requests = 0;
    int steps = 0;
    bool isCounting = false;
};

/// The tool out of the built module on a simulated module with a faulty link, in stepped time.
///
/// The event loop never runs the tool's timers: their events come from here alone, so a run is the
/// same every time. Whatever goes on is watched: what must not happen, whatever the faults, is
/// listed by violations().
class FaultRig : public QObject
{
public:
    explicit FaultRig(quint32 seed = workbench::FaultyLink::defaultSeed);
    ~FaultRig() override;

    workbench::SteppedClock clock;
    workbench::SimulatedModule module;
    WatchedLink chipSide; ///< what the faults let through
    workbench::FaultyLink faulty;
    WatchedLink hostSide; ///< what the host asks for

    ToolsInterface *tool() const { return working.data(); }
    /// Makes a tool as the host does, in place of the one before.
    void openTool();
    void deleteTool();
    void show();
    void hide();

    template <typename Widget>
    Widget *widget(const char *name) const
    {
        return working->findChild<Widget *>(QLatin1String(name));
    }
    QToolButton *startButton() const;
    QtCharts::QChartView *view() const { return working->findChild<QtCharts::QChartView *>(); }
    QtCharts::QXYSeries *series(int index) const;
    QPointF target() const { return series(0)->at(0); }
    QPointF actual() const { return series(1)->at(0); }
    QList<XmlRegisterWidget *> registerWidgets() const;
    bool isIdle() const;
    int flightIndex() const;

    // What a person does.
    void setLimits(int size) const;
    void pick(const QPointF &point);
    void pressStart();
    void pressStop();
    void runFlightPath();
    /// Opens the flight-path dialog, calls `act` while it is open, and closes it with Ok or Cancel.
    /// False when no dialog has opened.
    bool inDialog(const std::function<void(QDialog *)> &act, bool accepts);
    /// How many points the tool's flight path has, for the checks.
    int pathLength = 12;

    // Time.
    QList<int> timerIntervals() const;
    void sampleTick() { deliver(0, 0); }
    void updateTick() { deliver(50, 100); }
    /// `stepMs` of stepped time with five samples, then the update tick.
    void round(int stepMs = 50);
    void rounds(int count);
    /// Rounds until the start button is enabled; false after too many.
    bool settle();
    /// True when the chip stands still, at once or after a bounded time without the tool.
    bool chipComesToRest();

    // The chip.
    QPoint chipPosition();
    int chipValue(const char *name);
    unsigned int address(const char *name);
    const workbench::AxisAddresses &axisRegisters() const { return known; }
    /// Writes a register as another tool of the host does.
    void writeFromElsewhere(const char *name, int value);
    /// Gives the registers that shape the ramps the values of a fresh chip.
    void repairRamps();

    /// Lets `action` be an event that waits while the n-th step from now is under way, 0 for the
    /// next: it gets in when the fault Spin is on.
    void postInStep(int number, const std::function<void()> &action);
    /// Calls `action` in the n-th request from now, faults or not.
    void callInRequest(int number, const std::function<void()> &action);

    /// What was written last to the target registers, while the tool is the only one to write;
    /// nothing before both.
    std::optional<QPoint> writtenTarget() const;
    /// Somebody else has written, or tried to.
    void forgetWrittenTarget();
    /// As a target register holds it, which has 24 bits.
    static QPoint asTarget(const QPointF &point);

    /// Forgets which target Stop has set: somebody sets another one.
    void forgetStop() { stopTarget.reset(); }

    QStringList takeViolations();
    /// Start sequences seen since the rig was made.
    int starts() const { return startsSeen; }
    int movesEnded() const { return endsSeen; }

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void wire();
    void deliver(int interval, int otherInterval);
    void hostWrites(unsigned int at, int value);
    void hostWrote(unsigned int at, int value);
    void hostRead(unsigned int at, std::optional<int> answer);
    void buttonChanged(QEvent *event);
    void violation(const QString &text);

    workbench::AxisAddresses known;
    unsigned int rampMode;
    QPointer<ToolsInterface> working;
    QPointer<QObject> watchedTool;
    bool isDelivering = false;
    int ticksUnderWay = 0;
    int startsSeen = 0;
    int endsSeen = 0;
    int startsAllowed = 0;
    int lastFlightIndex = 0;
    std::optional<unsigned int> foreignWrite;
    std::optional<QPointF> stopTarget;
    std::optional<int> velocityAnswers[2];
    std::optional<int> targetWrites[2];
    QStringList violations;
};

/// Drops every registered violation into the test's failure message.
#define VERIFY_CLEAN(rig)                                                                          \
    do {                                                                                           \
        const QString found = (rig).takeViolations().join(QStringLiteral("; "));                   \
        QVERIFY2(found.isEmpty(), qPrintable(found));                                              \
    } while (false)
