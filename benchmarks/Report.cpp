// How the results are printed.

#include "Harness.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QLocale>
#include <QTextStream>
#include <QThread>

#include <cmath>

namespace harness {

namespace {

QTextStream &output()
{
    static QTextStream stream(stdout);
    return stream;
}

QString processor()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("unknown processor");
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("model name"))
            return QString::fromLatin1(line.mid(line.indexOf(':') + 1).trimmed());
    }
    return QStringLiteral("unknown processor");
}

QString load()
{
    QFile file(QStringLiteral("/proc/loadavg"));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll().split(' ').value(0))
                                          : QStringLiteral("unknown");
}

QString buildType()
{
#ifdef NDEBUG
    return QStringLiteral("optimised build");
#else
    return QStringLiteral("build with assertions");
#endif
}

QString padded(const QString &cell, int width, bool isFirst)
{
    return isFirst ? cell.leftJustified(width) : cell.rightJustified(width);
}

} // namespace

Program::Program(const QString &title)
    : quick(QCoreApplication::arguments().contains(QLatin1String("--quick")))
{
    output() << "\n## " << title << "\n\nQt " << qVersion() << ", platform "
             << QGuiApplication::platformName() << ", " << processor() << ", "
             << QThread::idealThreadCount() << " cores, " << buildType() << ", load at start "
             << load() << (quick ? ", quick run: few repetitions" : "") << ".\n\n";
    output().flush();
}

void Program::note(const QString &text)
{
    output() << text << "\n\n";
    output().flush();
}

Table::Table(const QStringList &header)
    : rows{header}
{
}

void Table::addRow(const QStringList &cells)
{
    rows.append(cells);
}

void Table::print() const
{
    QVector<int> widths(rows.constFirst().size());
    for (const QStringList &row : rows) {
        for (int i = 0; i < widths.size(); ++i)
            widths[i] = qMax(widths.at(i), row.value(i).size());
    }
    QStringList rule;
    for (int i = 0; i < widths.size(); ++i)
        rule << QString(widths.at(i) - 1, QLatin1Char('-')) + QLatin1Char(i == 0 ? '-' : ':');
    const QString between = QStringLiteral(" | ");
    for (int r = 0; r < rows.size(); ++r) {
        QStringList cells;
        for (int i = 0; i < widths.size(); ++i)
            cells << padded(rows.at(r).value(i), widths.at(i), i == 0);
        output() << "| " << cells.join(between) << " |\n";
        if (r == 0)
            output() << "| " << rule.join(between) << " |\n";
    }
    output() << "\n";
    output().flush();
}

QString number(double value)
{
    constexpr int significantDigits = 3;
    if (value == 0)
        return QStringLiteral("0");
    const int leading = static_cast<int>(std::floor(std::log10(std::abs(value)))) + 1;
    return QString::number(value, 'f', qBound(0, significantDigits - leading, 6));
}

QString ratio(double value, double reference)
{
    return reference > 0 ? number(value / reference) + QStringLiteral(" x") : QStringLiteral("-");
}

QString count(qint64 value)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(value);
}

} // namespace harness
