#pragma once

#include <QPointF>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class QIODevice;

namespace drive {

/// What a flight-path file holds.
struct FlightPathFile
{
    QString title; ///< The first line, its line break included.
    QVector<QPointF> points;
};

/// Reads a flight path from a device that is open for reading in text mode.
///
/// The first line is the title. Each further line holds points as x;y;x;y..., numbers as in the C
/// locale; a line that begins with "#" or has fewer than two fields holds none. A field that is no
/// number counts as 0; a point that is not finite is left out. The last character of every line is
/// dropped, also where it is no line break: the last line of "...\n10;20" is the point (10, 2).
///
/// `fieldsRead`, unless empty, is told the fields of each line behind the title.
FlightPathFile readFlightPath(QIODevice &device,
                              const std::function<void(const QStringList &)> &fieldsRead = {});

} // namespace drive
