#pragma once

#include "FaultyLink.h"
#include "RandomMoves.h"
#include "Tape.h"

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>

namespace workbench {

/// What the program is asked to do. File names are as given; an empty one was not given.
struct Options
{
    bool isUnattended = false;
    bool isTimeSimulated = false; ///< with isUnattended only
    QString pictureFile;
    QString recordFile;
    QString reportFile;
    QString baselineFile;        ///< an earlier report
    double tolerancePercent = 0; ///< of each number in it
    QVector<QPoint> targets;     ///< position units, each within signed 24 bits
    QString flightPathFile;      ///< excludes targets
    int firstPoint = 1;          ///< of the flight path, counted from 1
    int randomMoves = 0;         ///< excludes targets and a flight path; 0 for none
    MoveArea area;               ///< of the random moves
    int repetitions = 1;         ///< of all that is asked for
    qint64 linkCostNs = 0;       ///< how long each request blocks
    QString chipFile;
    QString pluginsFolder;
    QVector<Fault> faults; ///< on from the start
    quint32 seed = FaultyLink::defaultSeed;
    QString tapeFile;
    QString replayFile;                     ///< excludes a link cost
    qint64 tapeSizeLimit = maximumTapeSize; ///< bytes; no option leads here
};

/// What came of reading the command line: exactly one of the three outcomes.
struct CommandLine
{
    enum Outcome { Run, PrintText, Refuse };

    Outcome outcome = Run;
    Options options; ///< for Run
    QString text;    ///< for PrintText, whole lines; for Refuse one line without its end
};

/// `arguments` begin with the program's name. Options left out have their default values, which
/// depend on where the program is: there must be an application object. Neither prints nor ends
/// anything, and looks at no file.
CommandLine parseCommandLine(const QStringList &arguments);

} // namespace workbench
