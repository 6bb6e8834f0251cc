#pragma once

#include "Tape.h"

#include <QSaveFile>
#include <QString>

#include <optional>

namespace bench {

class TapeRecorder;

/// Keeps a recorder's tape in a file. The file gets its name with finish(), whatever came of the
/// run that is on it; one that goes away before leaves nothing behind and an existing file as it
/// was.
class TapeFile
{
public:
    /// Refers to the recorder.
    explicit TapeFile(TapeRecorder &recorder);
    ~TapeFile();
    TapeFile(const TapeFile &) = delete;
    TapeFile &operator=(const TapeFile &) = delete;

    /// Opens the file and starts the tape; nothing happens for an empty name. Returns an empty
    /// text, or one line that says why that is not possible.
    QString begin(const QString &fileName);

    /// Ends the tape. Returns like begin(); nothing happens, successfully, without a tape.
    QString finish();

private:
    TapeRecorder &recorder;
    QSaveFile file;
};

/// Complains on the standard error output when there is no tape to return.
std::optional<Tape> readTapeFile(const QString &fileName);

} // namespace bench
