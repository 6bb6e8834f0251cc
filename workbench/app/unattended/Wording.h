#pragma once

#include <QLatin1String>
#include <QPointF>
#include <QString>

namespace workbench {

class FlightProgress;
struct MoveResult;
struct Options;

/// All that an unattended run says in its own words, on the standard output and, when it fails, on
/// the standard error output: one line each, without its end, for people. What the parts of the
/// panel lack is worded where they are operated, what a file suffers from where it is opened.
namespace wording {

/// Position units, "X,Y".
QString place(const QPointF &position);

// Moves. What failed goes into moveFailed().

QString moveUnderWay(int number, const QPointF &shown, int sampleCount);
QString moveDone(int number, const MoveResult &move);
QString moveFailed(int number, const QString &reason);

QString targetNotShown(const QPointF &target);
inline const QLatin1String startDisabled("the start button is disabled");
inline const QLatin1String startWithoutEffect("the start button starts nothing");
inline const QLatin1String endedBeforeTurn("ended before the turn");
inline const QLatin1String turnTargetNotShown("the second target is not in the chart");
inline const QLatin1String turnNotWritten("the panel does not write the second target to the chip");
inline const QLatin1String endedBeforeStop("ended before the stop");
inline const QLatin1String stopDisabled("the stop button is disabled");
inline const QLatin1String notHalfWay("the axes do not get half the way");
inline const QLatin1String noEnd("does not end");
/// Goes behind noEnd.
QString axesAt(const QPointF &position);
inline const QLatin1String endedInMotion("the panel reports the end while the axes move");
QString endedElsewhere(const QPointF &end, const QPointF &target);
QString shownElsewhere(const QPointF &shown, const QPointF &axes);
QString offTheLine(double units);
inline const QLatin1String movedAfterStop("the axes moved on after the stop");

// Flight paths. What failed goes into flightFailed().

QString flightUnderWay(const FlightProgress &flight, const QPointF &shown);
QString pointReached(const FlightProgress &flight, int index);
QString flightDone(const FlightProgress &flight);
QString flightFailed(const QString &reason);

inline const QLatin1String clearDisabled("the clear button is disabled");
inline const QLatin1String flightNotOffered("the start button's menu does not offer to run it");
inline const QLatin1String flightWithoutEffect("the menu starts nothing");
QString pointNotReached(const FlightProgress &flight, int index, const QString &reason,
                        const QPointF &axes);
// Reasons for that:
inline const QLatin1String noRest("the axes do not come to rest");
inline const QLatin1String panelDrivesOn("the panel drives on");
inline const QLatin1String panelEndsFlight("the panel ends the run");

inline const QLatin1String movedBehindFlight("the axes move on behind the last point");
QString flightEndedElsewhere(const QPointF &end, const QPointF &shown);
QString offTheSegments(double units);

// The points of a flight path, before it is run.

QString ofFile(const QString &fileName, const QString &remark);
inline const QLatin1String
    notOfferedByFileDialog("the panel's file dialog does not take it; it wants a visible .csv or "
                           ".txt file without a quotation mark in its name");
inline const QLatin1String noFlightPath("the panel has no flight path");
inline const QLatin1String noPoint("holds no point");
QString noSuchPoint(int number, int pointCount);
/// `number` counts from 1.
QString pointOutOfRange(int number, const QPointF &point);
/// `count` of `total` points have fractions; `first` is one of them, driven to as `driven`.
QString fractionsDropped(int count, int total, const QPointF &first, const QPointF &driven);

// The run as a whole.

QString noTool(const QString &pluginsFolder);
QString panelLacks(const QString &part);
inline const QLatin1String interrupted("interrupted");
QString allAsPlanned(const Options &options, qint64 recordedSamples);
/// Behind a line for each of them.
QString notAsInReport(int differences, const QString &fileName);

// The tape that answers.

QString notAsOnTape(const QString &deviation);
inline const QLatin1String tapeAtEnd("the tape is at its end");
QString tapeWaits(const QString &write);
/// `nextWrite` is empty behind the last.
QString tapeNotPlayed(const QString &nextWrite);

} // namespace wording

} // namespace workbench
