#include "FlightPathSetup.h"

#include "FlightPathEditor.h"
#include "FlightPoints.h"
#include "InputFile.h"
#include "RunOutput.h"
#include "Wording.h"

#include <QFileInfo>

namespace workbench {

namespace {

/// Whether the panel's file dialog offers a file of that name. To be known before: given a name
/// that it does not offer, the dialog sometimes takes it, depending on how far it has read the
/// folder.
bool isOffered(const QFileInfo &info)
{
    const QString suffix = info.suffix().toLower();
    return !info.isHidden() && !info.absoluteFilePath().contains(QLatin1Char('"')) &&
           (suffix == QLatin1String("csv") || suffix == QLatin1String("txt"));
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

Complaint prepareFlightPath(const QString &fileName, const PanelDriver &panel, const Clock &clock,
                            RunOutput &output, QVector<QPointF> *path)
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
    return {};
}

} // namespace workbench
