#pragma once

#include "Tape.h"

#include <QSaveFile>
#include <QString>

#include <optional>

namespace workbench {

class TapeRecorder;

/// Keeps a recorder's tape in a file, and its onFull for its lifetime. The file gets its name with
/// finish(), whatever came of the run that is on it; one that goes away before leaves nothing
/// behind and an existing file as it was.
class TapeFile
{
public:
    /// Refers to the recorder.
    explicit TapeFile(TapeRecorder &recorder);
    ~TapeFile();
    TapeFile(const TapeFile &) = delete;
    TapeFile &operator=(const TapeFile &) = delete;

    /// Opens the file and starts the tape; nothing happens for an empty name. Returns an empty
    /// text, or one line that says why that is not possible. A tape that becomes full is warned of
    /// in the log, at that moment. `sizeLimit` as TapeRecorder::start() takes it.
    QString begin(const QString &fileName, qint64 sizeLimit = maximumTapeSize);

    /// Ends the tape. Returns like begin(); nothing happens, successfully, without a tape. A tape
    /// that became full is a problem too, but is kept.
    QString finish();

private:
    TapeRecorder &recorder;
    QSaveFile file;
};

/// Complains on the standard error output when there is no tape to return.
std::optional<Tape> readTapeFile(const QString &fileName);

} // namespace workbench
