#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace workbench {

class FlightProgress;
struct MoveResult;
struct Options;

/// What came of an unattended run, for programs; docs/reports.md explains the file.
class RunReport
{
public:
    static constexpr int schemaVersion = 1;

    /// Versions as the tool and the chip description give them.
    RunReport(const Options &options, const QString &toolVersion, const QString &chipName);

    /// `promisedS`: how long the ramp settings say that the axes take; nothing when they say
    /// nothing about such a move.
    void add(const MoveResult &move, std::optional<double> promisedS, quint64 failedRequests);
    void add(const FlightProgress &flight, double latenessMs, quint64 failedRequests);

    QJsonObject object() const;

    /// Returns an empty text, or one line that says why the file could not be written.
    QString write(const QString &fileName) const;

private:
    void append(QJsonObject move);

    QJsonObject head;
    QJsonArray moves;
};

} // namespace workbench
