#pragma once

#include "SampleTap.h"

#include <QSaveFile>
#include <QString>

namespace workbench {

/// Writes samples to a CSV file while they come in: a header line, then a line for each sample with
/// the seconds since the first one and both positions. The file gets its name with finish(); a
/// writer that goes away before leaves nothing behind and an existing file as it was.
class RecordWriter
{
public:
    /// Opens the file. Returns an empty text, or one line that says why that is not possible.
    QString begin(const QString &fileName);

    /// Nothing happens before begin(). Problems show in finish().
    void append(const Sample &sample);

    /// Returns like begin(). Nothing happens, successfully, when begin() was not called.
    QString finish();

    qint64 sampleCount() const { return count; }

private:
    QSaveFile file;
    qint64 firstTimeNs = 0;
    qint64 count = 0;
};

} // namespace workbench
