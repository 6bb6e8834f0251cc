#pragma once

#include "Explorer.h"

#include <QProcessEnvironment>

/// Sequences that are explored in a process of their own, so that one that crashes or hangs is a
/// failure like any other: named by its seed, and shortened.
class ExplorerRun
{
public:
    /// Whether this process is such a run.
    static bool isHere() { return qEnvironmentVariableIsSet(workerVariable); }
    /// In such a run: tells which sequence begins, and returns what is left of it when it is being
    /// shortened.
    static ExplorerEvents begin(unsigned int seed, const ExplorerEvents &events);

    /// `function` of this test program is the one that explores.
    explicit ExplorerRun(const QString &function);

    /// For a test of the shortening: a sequence with an event of this kind crashes.
    void abortOn(ExplorerEvent::Kind kind);

    /// Explores as the environment says. What went wrong, for people to read; empty when nothing
    /// did. A run that fails by itself has shortened its sequence already.
    QString run();

    /// What a run that ended well has told of itself.
    QString summary() const { return told; }

    static constexpr int eventsPerSequence = 250;

private:
    struct Outcome
    {
        bool isFine = false;
        bool hasCrashed = false; ///< or hung
        unsigned int seed = 0;   ///< of the sequence begun last
        QString output;
    };
    Outcome start(const QProcessEnvironment &settings) const;
    QString shortenedCrash(unsigned int seed) const;

    static constexpr const char *workerVariable = "EXPLORER_WORKER";
    QString functionName;
    QProcessEnvironment environment;
    QString told;
};
