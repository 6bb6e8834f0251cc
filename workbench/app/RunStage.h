#pragma once

#include "EventWait.h"
#include "PanelDriver.h"
#include "RecordWriter.h"
#include "RunReport.h"

#include <QElapsedTimer>

#include <functional>

namespace bench {

class SampleTap;
class SimulatedModule;

/// What all parts of an unattended run work with: the panel that is driven, the module behind it
/// and where the results go. Samples are those that the panel asks for itself. GUI thread; real
/// time.
class RunStage
{
public:
    /// Refers to all but the panel driver. Takes the tap's onSample over for its lifetime.
    RunStage(SimulatedModule &module, SampleTap &tap, const PanelDriver &panel,
             RecordWriter &record, RunReport &report);
    ~RunStage();
    RunStage(const RunStage &) = delete;
    RunStage &operator=(const RunStage &) = delete;

    SimulatedModule &module;
    PanelDriver panel;
    RunReport &report;

    /// Each sample, once it is on record; empty when nobody is interested.
    std::function<void(const Sample &)> onSample;
    /// What to show as progress; empty to show nothing.
    std::function<QString()> progressText;

    /// Waits in the event loop until `condition` holds. Returns an empty text then, and otherwise
    /// `whenTimedOut` or that the run was interrupted.
    QString waitFor(const std::function<bool()> &condition, qint64 timeoutMs,
                    const QString &whenTimedOut);
    /// As waitFor(), for what must not happen.
    QString watchAgainst(const std::function<bool()> &condition, qint64 durationMs,
                         const QString &whenHappened);

    /// Gives the panel's chart the time to lay itself out after its limits have changed.
    /// Returns like waitFor(), but not to have come to rest is no fault.
    QString letPanelSettle();

    /// Stops the axes through the panel, also after an interruption.
    void haltAxes();
    /// Ends what is waited for; may be called at any time.
    void interrupt() { wait.interrupt(); }

    bool isStandingStill();
    QPoint positionNow();
    /// Long enough for a move to the panel's target that ends at all, in milliseconds.
    qint64 timeoutMs();

private:
    void take(const Sample &sample);
    void showProgress();

    SampleTap &tap;
    RecordWriter &record;
    EventWait wait;
    QElapsedTimer sinceProgress;
};

} // namespace bench
