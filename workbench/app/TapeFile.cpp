#include "TapeFile.h"

#include "OutputFile.h"
#include "RunReport.h"
#include "TapeReader.h"
#include "TapeRecorder.h"

#include <QFile>
#include <QFileInfo>

namespace bench {

TapeFile::TapeFile(TapeRecorder &tapeRecorder)
    : recorder(tapeRecorder)
{
}

TapeFile::~TapeFile()
{
    recorder.finish();
}

QString TapeFile::begin(const QString &fileName)
{
    if (fileName.isEmpty())
        return QString();
    const QString fault = openOutput(file, fileName);
    if (fault.isEmpty())
        recorder.start(&file);
    return fault;
}

QString TapeFile::finish()
{
    if (!file.isOpen())
        return QString();
    recorder.finish();
    return commitOutput(file);
}

std::optional<Tape> readTapeFile(const QString &fileName)
{
    const QFileInfo info(fileName);
    QFile file(fileName);
    // To open a device or a pipe could block.
    if (info.exists() && !info.isFile()) {
        complain(QStringLiteral("%1: is not an ordinary file").arg(fileName));
        return std::nullopt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        complain(QStringLiteral("%1: %2").arg(fileName, file.errorString()));
        return std::nullopt;
    }
    TapeError error;
    auto tape = readTape(&file, &error);
    if (!tape)
        complainAbout(fileName, error.line, error.reason);
    return tape;
}

} // namespace bench
