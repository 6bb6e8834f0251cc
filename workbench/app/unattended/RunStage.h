#pragma once

#include "AxesState.h"
#include "Clock.h"
#include "EventWait.h"
#include "MoveTally.h"
#include "PanelDriver.h"
#include "RecordWriter.h"
#include "ReplayWatch.h"
#include "RunOutput.h"
#include "SimulatedModule.h"

#include <functional>
#include <optional>

namespace workbench {

class RunReport;
class SampleTap;
class TapeLink;

/// What is done in mid-move.
enum class StepIn {
    Pick, ///< the panel writes the target to the chip by itself a little later
    Stop, ///< written at once
};

/// What all parts of an unattended run work with: the panel that is driven, the module behind it,
/// the tape that answers in the module's place if there is one, and where the results go. Samples
/// are those that the panel asks for itself. All times are those of the module's clock. GUI thread.
class RunStage
{
public:
    /// Refers to all but the panel driver; null plays no tape. Takes the tap's onSample over for
    /// its lifetime.
    /// `isTimeSimulated`: a tape recorded on simulated time too has its requests at the very same
    /// times.
    RunStage(SimulatedModule &module, const TapeLink *tape, SampleTap &tap,
             const PanelDriver &panel, RecordWriter &record, RunOutput &output,
             bool isTimeSimulated);
    ~RunStage();
    RunStage(const RunStage &) = delete;
    RunStage &operator=(const RunStage &) = delete;

    SimulatedModule &module;
    PanelDriver panel;
    RunOutput &output;
    const AxesState axes;
    const ReplayWatch replay;

    /// Each sample, once it is on record; empty when nobody is interested.
    std::function<void(const Sample &)> onSample;
    /// Set for many moves: they are added up instead of being told one by one.
    MoveTally *tally = nullptr;
    /// Gets each move; null when nobody wants one.
    RunReport *report = nullptr;
    /// Of the requests, since this was asked last.
    quint64 takeFailedRequests();
    /// What to show as progress; empty to show nothing.
    std::function<QString()> progressText;

    /// Waits in the event loop until `condition` holds. Returns an empty text then, and otherwise
    /// `whenTimedOut`, that the run was interrupted, or what goes other than on the tape, which
    /// also tells how long to wait where there is one.
    QString waitFor(const std::function<bool()> &condition, qint64 timeoutMs,
                    const QString &whenTimedOut);
    /// As waitFor(), for what must not happen.
    QString watchAgainst(const std::function<bool()> &condition, qint64 durationMs,
                         const QString &whenHappened);

    /// Gives the panel's chart the time to lay itself out after its limits have changed.
    /// Returns like waitFor(), but not to have come to rest is no problem.
    QString letPanelSettle();

    /// True at the moment to do something in mid-move: at `distance` from `start`, or where the
    /// tape waits for it.
    bool isTimeToStepIn(const QPoint &start, double distance, StepIn what) const;

    /// The time of the first sample since which the axes stand still; now, when they do not or when
    /// that is not known of a tape.
    qint64 restSinceNs() const { return restSince.value_or(module.clock().now()); }
    /// Looks for the next rest.
    void forgetRest() { restSince.reset(); }

    /// Stops the axes through the panel, also after an interruption. There are none to stop on a
    /// tape.
    void haltAxes();
    /// Ends what is waited for; may be called at any time.
    void interrupt() { wait.interrupt(); }

    /// Long enough for a move to the panel's target that ends at all, in milliseconds.
    qint64 timeoutMs() const;

private:
    void take(const Sample &sample);
    void showProgress();

    bool isWaitedFor(StepIn what) const;

    const TapeLink *tape;
    bool isTimeSimulated;
    SampleTap &tap;
    RecordWriter &record;
    EventWait wait;
    Stopwatch sinceProgress;
    std::optional<qint64> restSince;
    quint64 failedBefore = 0;
};

} // namespace workbench
