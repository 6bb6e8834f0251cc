#include "FlightPathReader.h"

#include "Positions.h"

#include <QIODevice>

namespace drive {
namespace {

constexpr QLatin1Char separator(';');

/// By hand: compiled against a newer Qt, QString::split() would need Qt 5.14.
QStringList fieldsOf(const QString &line)
{
    QStringList fields;
    int begin = 0;
    for (int end = line.indexOf(separator); end >= 0; end = line.indexOf(separator, begin)) {
        fields.append(line.mid(begin, end - begin));
        begin = end + 1;
    }
    fields.append(line.mid(begin));
    return fields;
}

double number(const QString &field)
{
    bool isNumber = false;
    const double value = field.toDouble(&isNumber);
    return isNumber ? value : 0.0;
}

void appendPoints(QVector<QPointF> &points, const QStringList &fields)
{
    for (int i = 0; i + 1 < fields.size(); i += 2) {
        const QPointF point(number(fields.at(i)), number(fields.at(i + 1)));
        if (isFinite(point))
            points.append(point);
    }
}

} // namespace

FlightPathFile readFlightPath(QIODevice &device,
                              const std::function<void(const QStringList &)> &fieldsRead)
{
    FlightPathFile file;
    // Up to a NUL byte, unlike the lines below.
    file.title = QString::fromLocal8Bit(device.readLine().constData());
    while (!device.atEnd()) {
        const QByteArray bytes = device.readLine();
        if (bytes.isEmpty())
            break;
        QString line = QString::fromLocal8Bit(bytes.constData(), bytes.size());
        line.chop(1);
        const QStringList fields = fieldsOf(line);
        if (fieldsRead)
            fieldsRead(fields);
        if (!fields.constFirst().startsWith(QLatin1Char('#')))
            appendPoints(file.points, fields);
    }
    return file;
}

} // namespace drive
