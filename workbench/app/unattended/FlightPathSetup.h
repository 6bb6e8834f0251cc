#pragma once

#include "Complaints.h"

#include <QPointF>
#include <QString>
#include <QVector>

namespace workbench {

class Clock;
class PanelDriver;
class RunOutput;

/// Returns an empty text, or why no flight path can be loaded from the file; known without a panel.
QString cannotLoadFlightPath(const QString &fileName);

/// Gives the panel the path of a file from its point `firstPoint` on, counted from 1, or leaves its
/// built-in one when the name is empty, and its points to `path`. Says in `output` what of them the
/// panel drops.
Complaint prepareFlightPath(const QString &fileName, const PanelDriver &panel, int firstPoint,
                            const Clock &clock, RunOutput &output, QVector<QPointF> *path);

} // namespace workbench
