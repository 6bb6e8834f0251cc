#pragma once

#include "MoveResult.h"
#include "RunStage.h"

namespace workbench {

/// Carries moves out through the panel, one after another, and checks each.
class MoveRun
{
public:
    /// Refers to the stage and takes its onSample and progressText over for its lifetime.
    explicit MoveRun(RunStage &stage);
    ~MoveRun();
    MoveRun(const MoveRun &) = delete;
    MoveRun &operator=(const MoveRun &) = delete;

    /// Returns an empty text, or one line about what failed first; nothing moves any more then,
    /// unless that is what failed.
    QString carryOut(const QVector<ScriptedMove> &moves);

private:
    QString carryOut(const ScriptedMove &planned);
    void tell();
    std::optional<double> promised() const;
    QString pickAndStart(const ScriptedMove &planned);
    QString prepareView(const ScriptedMove &planned);
    QString turn();
    QString stop();
    QString waitForEnd();
    QString checkHalt();
    QString checkStaysPut();
    QString halfWay(StepIn what);

    RunStage &stage;
    int number = 0;
    MoveResult move;
};

} // namespace workbench
