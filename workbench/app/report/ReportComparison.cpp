#include "ReportComparison.h"

#include "InputFile.h"
#include "RunReport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace workbench {

namespace {

constexpr double percent = 100;

QString shown(const QJsonValue &value)
{
    if (value.isUndefined())
        return QStringLiteral("nothing");
    const QString text =
        QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    return text.mid(1, text.size() - 2);
}

class Comparison
{
public:
    explicit Comparison(double tolerancePercent)
        : share(tolerancePercent / percent)
    {
    }

    void compare(const QString &place, const QJsonValue &now, const QJsonValue &before)
    {
        if (now.isObject() && before.isObject())
            compareObjects(place, now.toObject(), before.toObject());
        else if (now.isArray() && before.isArray())
            compareArrays(place, now.toArray(), before.toArray());
        else if (!isSame(now, before))
            found << QStringLiteral("%1: %2, was %3").arg(place, shown(now), shown(before));
    }

    QStringList found;

private:
    bool isSame(const QJsonValue &now, const QJsonValue &before) const
    {
        if (!now.isDouble() || !before.isDouble())
            return now == before;
        const double a = now.toDouble();
        const double b = before.toDouble();
        return std::abs(a - b) <= share * qMax(std::abs(a), std::abs(b));
    }

    void compareObjects(const QString &place, const QJsonObject &now, const QJsonObject &before)
    {
        QStringList keys = now.keys() + before.keys();
        keys.removeDuplicates();
        keys.sort();
        for (const QString &key : qAsConst(keys))
            compare(place + QLatin1Char('.') + key, now.value(key), before.value(key));
    }

    void compareArrays(const QString &place, const QJsonArray &now, const QJsonArray &before)
    {
        for (int i = 0; i < qMax(now.size(), before.size()); ++i)
            compare(QStringLiteral("%1[%2]").arg(place).arg(i + 1),
                    i < now.size() ? now.at(i) : QJsonValue(QJsonValue::Undefined),
                    i < before.size() ? before.at(i) : QJsonValue(QJsonValue::Undefined));
    }

    double share;
};

} // namespace

std::optional<QJsonObject> readReport(const QString &fileName, QString *problem)
{
    QFile file;
    *problem = openInput(file, fileName);
    if (!problem->isEmpty())
        return std::nullopt;
    const QJsonObject report = QJsonDocument::fromJson(file.readAll()).object();
    if (report.value(QStringLiteral("schema")) == QLatin1String("workbench-report") &&
        report.value(QStringLiteral("schema_version")) == RunReport::schemaVersion)
        return report;
    *problem = QStringLiteral("%1: is not a report of version %2")
                   .arg(fileName)
                   .arg(RunReport::schemaVersion);
    return std::nullopt;
}

QStringList differences(const QJsonObject &report, const QJsonObject &earlier,
                        double tolerancePercent)
{
    const QString moves = QStringLiteral("moves");
    Comparison comparison(tolerancePercent);
    comparison.compare(moves, report.value(moves), earlier.value(moves));
    return comparison.found;
}

} // namespace workbench
