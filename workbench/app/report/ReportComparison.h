#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace workbench {

/// Reads an earlier report; `problem` is set to one line when there is none to return, which is
/// also so for a report of another schema.
std::optional<QJsonObject> readReport(const QString &fileName, QString *problem);

/// What of the moves is other than in the earlier report, one line each: "moves[3].duration_s: 1.5,
/// was 1.4". Numbers may differ by `tolerancePercent` of the larger one; all else must be equal.
/// Versions and options may differ: it is for comparing these that there are two runs.
QStringList differences(const QJsonObject &report, const QJsonObject &earlier,
                        double tolerancePercent);

} // namespace workbench
