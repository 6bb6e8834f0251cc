#pragma once

#include "FaultRig.h"

#include <QVector>

#include <functional>
#include <optional>
#include <random>

/// One thing that a person or the host does. What the numbers mean depends on the kind; they alone
/// say what happens, so an event means the same whatever went before it.
struct ExplorerEvent
{
    enum Kind {
        Sample,      ///< The sample timer.
        Update,      ///< The update timer.
        Step,        ///< `a` milliseconds go by.
        Round,       ///< `a` milliseconds with samples, then the update timer.
        Pick,        ///< The mouse is pressed at the plot's per mille `a`, `b`.
        Drag,        ///< It is dragged from the middle to there, often past an edge.
        Start,       ///< The start button.
        Stop,        ///< The stop button.
        Limit,       ///< Limit `a`, 0 to 3, is set to `b` or to near the opposite one.
        Zoom,        ///< A zoom button; in for `a` not 0.
        Wheel,       ///< Ctrl and the wheel, delta `a`.
        Band,        ///< A rectangle is drawn to zoom into, or for `a` not 0 the zoom is undone.
        Clear,       ///< The traces are cleared.
        TraceLength, ///< Their length is set to `a`.
        EditRow,     ///< A target is typed into the row of axis `a`.
        Elsewhere,   ///< Another tool of the host writes register `a` of a list.
        AcceptPath,  ///< The dialog takes a path of `a` points.
        LoadPath,    ///< A file of `a` points is loaded through both dialogs.
        RunPath,     ///< "Run flight path".
        Show,
        Hide,
        FaultOn, ///< Fault `a` of the table, with a parameter drawn from `b`.
        FaultOff,
        AllFaultsOff,
        Nested, ///< Into the next event that has it, during its `a`-th step, kind `b` gets in.
        Resize,
        Reopen, ///< The tool is deleted and made again.
        KindCount
    };
    Kind kind = Sample;
    int a = 0;
    int b = 0;
};
using ExplorerEvents = QVector<ExplorerEvent>;

/// A line for people to read.
QString textOf(const ExplorerEvent &event);
/// An indented line for each.
QString textOf(const ExplorerEvents &events);

/// Always the same for a seed.
ExplorerEvents explorerEvents(unsigned int seed, int count);

/// A tool to which such events happen.
class Explorer
{
public:
    explicit Explorer(unsigned int seed);
    ~Explorer();
    Explorer(const Explorer &) = delete;
    Explorer &operator=(const Explorer &) = delete;

    /// What the tools of all sequences have done, to see that the sequences are worth something.
    struct Counts
    {
        int starts = 0;
        int movesEnded = 0;
        int nested = 0;
        int pathsTaken = 0;
        int deletedInside = 0;
    };
    static Counts &counts();

    void apply(const ExplorerEvent &event);
    /// What does not hold after the last event; empty when all is well.
    QString broken();
    /// Ends all faults and brings the tool to a standstill and on to a new target; what went wrong.
    QString brokenAtTheEnd();

private:
    void act(const ExplorerEvent &event);
    void actInside();
    void actOnTool(const ExplorerEvent &event);
    void actOnModule(const ExplorerEvent &event);
    void setLimit(const ExplorerEvent &event);
    void mouse(const ExplorerEvent &event);
    void mouseStep(QEvent::Type type, const QPoint &at, Qt::MouseButton button);
    void wheel(const ExplorerEvent &event);
    void editRow(const ExplorerEvent &event);
    void takePath(const ExplorerEvent &event);
    void switchOn(const ExplorerEvent &event);
    void checkTarget(QStringList &found) const;
    void checkSeries(QStringList &found) const;
    void checkLimits(QStringList &found) const;
    void checkTimers(QStringList &found);

    FaultRig rig;
    bool hasLostRegisters = false;
    bool wasUpdate = false;
    std::optional<ExplorerEvent> nested; ///< waits for an event that makes enough requests
};

/// The first event behind which something is broken, the text of what, and the events as far as
/// there; nothing when all is well.
struct ExplorerFailure
{
    ExplorerEvents events;
    QString text;
};
std::optional<ExplorerFailure> explore(unsigned int seed, const ExplorerEvents &events);

/// The shortest sequence found that still fails, by leaving out ever smaller parts; gives up after
/// a minute with what it has.
ExplorerEvents shortest(const ExplorerEvents &events,
                        const std::function<bool(const ExplorerEvents &)> &fails);
ExplorerFailure shortest(unsigned int seed, const ExplorerFailure &failure);
