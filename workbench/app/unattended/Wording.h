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
constexpr QLatin1String startDisabled("the start button is disabled");
constexpr QLatin1String startWithoutEffect("the start button starts nothing");
constexpr QLatin1String endedBeforeTurn("ended before the turn");
constexpr QLatin1String turnTargetNotShown("the second target is not in the chart");
constexpr QLatin1String turnNotWritten("the panel does not write the second target to the chip");
constexpr QLatin1String endedBeforeStop("ended before the stop");
constexpr QLatin1String stopDisabled("the stop button is disabled");
constexpr QLatin1String notHalfWay("the axes do not get half the way");
constexpr QLatin1String noEnd("does not end");
/// Goes behind noEnd.
QString axesAt(const QPointF &position);
constexpr QLatin1String endedInMotion("the panel reports the end while the axes move");
QString endedElsewhere(const QPointF &end, const QPointF &target);
QString shownElsewhere(const QPointF &shown, const QPointF &axes);
QString offTheLine(double units);
constexpr QLatin1String movedAfterStop("the axes moved on after the stop");

// Flight paths. What failed goes into flightFailed().

QString flightUnderWay(const FlightProgress &flight, const QPointF &shown);
QString pointReached(const FlightProgress &flight, int index);
QString flightDone(const FlightProgress &flight);
QString flightFailed(const QString &reason);

constexpr QLatin1String clearDisabled("the clear button is disabled");
constexpr QLatin1String flightNotOffered("the start button's menu does not offer to run it");
constexpr QLatin1String flightWithoutEffect("the menu starts nothing");
QString pointNotReached(const FlightProgress &flight, int index, const QString &reason,
                        const QPointF &axes);
// Reasons for that:
constexpr QLatin1String noRest("the axes do not come to rest");
constexpr QLatin1String panelDrivesOn("the panel drives on");
constexpr QLatin1String panelEndsFlight("the panel ends the run");

constexpr QLatin1String movedBehindFlight("the axes move on behind the last point");
QString flightEndedElsewhere(const QPointF &end, const QPointF &shown);
QString offTheSegments(double units);

// The points of a flight path, before it is run.

QString ofFile(const QString &fileName, const QString &remark);
constexpr QLatin1String
    notOfferedByFileDialog("the panel's file dialog does not take it; it wants a visible .csv or "
                           ".txt file without a quotation mark in its name");
constexpr QLatin1String noFlightPath("the panel has no flight path");
constexpr QLatin1String noPoint("holds no point");
QString noSuchPoint(int number, int pointCount);
/// `number` counts from 1.
QString pointOutOfRange(int number, const QPointF &point);
/// `count` of `total` points have fractions; `first` is one of them, driven to as `driven`.
QString fractionsDropped(int count, int total, const QPointF &first, const QPointF &driven);

// The run as a whole.

QString noTool(const QString &pluginsFolder);
QString panelLacks(const QString &part);
constexpr QLatin1String interrupted("interrupted");
QString allAsPlanned(const Options &options, qint64 recordedSamples);

// The tape that answers.

QString notAsOnTape(const QString &deviation);
constexpr QLatin1String tapeAtEnd("the tape is at its end");
QString tapeWaits(const QString &write);
/// `nextWrite` is empty behind the last.
QString tapeNotPlayed(const QString &nextWrite);

} // namespace wording

} // namespace workbench
