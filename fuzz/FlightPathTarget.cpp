#include "Targets.h"

#include "FlightPathReader.h"
#include "Positions.h"

#include <QBuffer>
#include <QLocale>

namespace fuzz {
namespace {

struct Reading
{
    drive::FlightPathFile file;
    QVector<QStringList> lines; ///< The fields that the reader told of.
};

Reading read(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    Reading reading;
    reading.file = drive::readFlightPath(
        buffer, [&reading](const QStringList &fields) { reading.lines.append(fields); });
    return reading;
}

double coordinate(const QString &field)
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    bool isNumber = false;
    const double value = locale.toDouble(field, &isNumber);
    return isNumber ? value : 0.0;
}

QVector<QPointF> pointsOf(const QVector<QStringList> &lines)
{
    QVector<QPointF> points;
    for (const QStringList &fields : lines) {
        if (fields.at(0).startsWith(QLatin1Char('#')))
            continue;
        for (int pair = 0; pair < fields.size() / 2; ++pair) {
            const QPointF point(coordinate(fields.at(2 * pair)),
                                coordinate(fields.at(2 * pair + 1)));
            if (drive::isFinite(point))
                points.append(point);
        }
    }
    return points;
}

/// The lines behind the title, each without its last character. For bytes without "\r", which a
/// device in text mode takes out.
QStringList bodyLines(const QByteArray &bytes)
{
    QStringList lines;
    int begin = bytes.indexOf('\n') + 1;
    while (begin > 0 && begin < bytes.size()) {
        const int end = bytes.indexOf('\n', begin);
        const QByteArray line = bytes.mid(begin, end < 0 ? -1 : end + 1 - begin);
        // The array by itself would be decoded up to a NUL.
        QString text = QString::fromLocal8Bit(line.constData(), line.size());
        text.chop(1);
        lines << text;
        begin = end + 1;
    }
    return lines;
}

QString checkTitle(const QByteArray &bytes, const QString &title)
{
    if (title.contains(QChar(0)))
        return QStringLiteral("a NUL in the title");
    const int lineBreak = title.indexOf(QLatin1Char('\n'));
    if (lineBreak >= 0 && lineBreak != title.size() - 1)
        return QStringLiteral("more than a line in the title");
    if (bytes.contains('\r'))
        return QString();
    const int lineEnd = bytes.indexOf('\n');
    const QByteArray line = bytes.left(lineEnd < 0 ? bytes.size() : lineEnd + 1);
    if (title != QString::fromLocal8Bit(line.left(static_cast<int>(qstrlen(line.constData())))))
        return QStringLiteral("the title is not the first line");
    return QString();
}

QString checkLines(const QByteArray &bytes, const QVector<QStringList> &lines)
{
    QStringList joined;
    for (const QStringList &fields : lines) {
        if (fields.isEmpty())
            return QStringLiteral("a line without a field");
        for (const QString &field : fields) {
            if (field.contains(QLatin1Char(';')))
                return QStringLiteral("a separator within a field");
        }
        joined << fields.join(QLatin1Char(';'));
    }
    if (!bytes.contains('\r') && joined != bodyLines(bytes))
        return QStringLiteral("the fields are not those of the file");
    return QString();
}

} // namespace

QString checkFlightPath(const QByteArray &bytes)
{
    const Reading reading = read(bytes);
    QString problem = checkTitle(bytes, reading.file.title);
    if (problem.isEmpty())
        problem = checkLines(bytes, reading.lines);
    for (const QPointF &point : reading.file.points) {
        if (!drive::isFinite(point))
            return QStringLiteral("a point that is not finite");
    }
    if (problem.isEmpty() && reading.file.points != pointsOf(reading.lines))
        return QStringLiteral("the points are not those of the fields");
    return problem;
}

} // namespace fuzz
