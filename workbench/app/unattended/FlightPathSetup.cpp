#include "FlightPathSetup.h"

#include "FlightPathEditor.h"
#include "FlightPoints.h"
#include "InputFile.h"
#include "RunOutput.h"
#include "Wording.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace workbench {

namespace {

constexpr int exactDigits = 17;

/// Whether the panel's file dialog offers a file of that name. To be known before: given a name
/// that it does not offer, the dialog sometimes takes it, depending on how far it has read the
/// folder.
bool isOffered(const QFileInfo &info)
{
    const QString suffix = info.suffix().toLower();
    return !info.isHidden() && !info.absoluteFilePath().contains(QLatin1Char('"')) &&
           (suffix == QLatin1String("csv") || suffix == QLatin1String("txt"));
}

/// The panel runs a path from its begin, so it gets one that begins later.
Complaint shorten(const QString &fileName, int firstPoint, FlightPathEditor &editor,
                  QVector<QPointF> *path)
{
    if (firstPoint > path->size())
        return {wording::ofFile(fileName, wording::noSuchPoint(firstPoint, path->size())),
                exitCode::usage};
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/path-XXXXXX.csv"));
    if (!file.open())
        return {wording::ofFile(file.fileName(), file.errorString()), exitCode::failure};
    file.write("\n");
    for (const QPointF &point : path->mid(firstPoint - 1))
        file.write(QByteArray::number(point.x(), 'g', exactDigits) + ';' +
                   QByteArray::number(point.y(), 'g', exactDigits) + '\n');
    file.flush();
    return {editor.load(file.fileName(), path), exitCode::failure};
}

} // namespace

QString cannotLoadFlightPath(const QString &fileName)
{
    QFile file;
    const QString problem = openInput(file, fileName);
    if (!problem.isEmpty() || isOffered(QFileInfo(fileName)))
        return problem;
    return wording::ofFile(fileName, wording::notOfferedByFileDialog);
}

Complaint prepareFlightPath(const QString &fileName, const PanelDriver &panel, int firstPoint,
                            const Clock &clock, RunOutput &output, QVector<QPointF> *path)
{
    FlightPathEditor editor(panel, clock);
    if (fileName.isEmpty()) {
        const QString problem = editor.read(path);
        const bool isMissing = problem.isEmpty() && path->isEmpty();
        return {isMissing ? QString(wording::noFlightPath) : problem, exitCode::failure};
    }
    const QString problem = editor.load(fileName, path);
    if (!problem.isEmpty())
        return {wording::ofFile(fileName, problem), exitCode::usage};
    if (path->isEmpty())
        return {wording::ofFile(fileName, wording::noPoint), exitCode::usage};
    const QString outside = outOfRange(*path);
    if (!outside.isEmpty())
        return {wording::ofFile(fileName, outside), exitCode::usage};
    const QString note = fractionNote(*path);
    if (!note.isEmpty())
        output.line(wording::ofFile(fileName, note));
    return firstPoint > 1 ? shorten(fileName, firstPoint, editor, path) : Complaint();
}

} // namespace workbench
