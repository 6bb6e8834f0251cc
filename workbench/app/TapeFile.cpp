#include "TapeFile.h"

#include "Complaints.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "TapeReader.h"
#include "TapeRecorder.h"

#include <QLoggingCategory>

namespace workbench {

namespace {

Q_LOGGING_CATEGORY(tapeLog, "workbench.tape", QtInfoMsg)

} // namespace

TapeFile::TapeFile(TapeRecorder &tapeRecorder)
    : recorder(tapeRecorder)
{
}

TapeFile::~TapeFile()
{
    recorder.finish();
    recorder.onFull = nullptr;
}

QString TapeFile::begin(const QString &fileName, qint64 sizeLimit)
{
    if (fileName.isEmpty())
        return QString();
    const QString problem = openOutput(file, fileName);
    if (!problem.isEmpty())
        return problem;
    recorder.onFull = [fileName] {
        qCWarning(tapeLog).noquote()
            << fileName + QStringLiteral(": the tape is full and ends here");
    };
    recorder.start(&file, sizeLimit);
    return QString();
}

QString TapeFile::finish()
{
    if (!file.isOpen())
        return QString();
    recorder.finish();
    const QString notWritten = commitOutput(file);
    if (!notWritten.isEmpty() || !recorder.isFull())
        return notWritten;
    return QStringLiteral("%1: the tape became full and lacks what came after its %2 requests")
        .arg(file.fileName())
        .arg(recorder.entryCount());
}

std::optional<Tape> readTapeFile(const QString &fileName)
{
    QFile file;
    const QString problem = openInput(file, fileName);
    if (!problem.isEmpty()) {
        complain(problem);
        return std::nullopt;
    }
    TapeError error;
    auto tape = readTape(&file, &error);
    if (!tape)
        complainAbout(fileName, error.line, error.reason);
    return tape;
}

} // namespace workbench
