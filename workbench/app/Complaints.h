#pragma once

#include "ExitCodes.h"

#include <QString>

namespace workbench {

/// What keeps the program from doing what it was asked, and its exit code for that. Nothing does
/// while the text is empty.
struct Complaint
{
    QString text; ///< one line without its end
    int code = exitCode::failure;
};

/// One line on the standard error output, behind the program's name.
void complain(const QString &text);

/// One line on the standard error output, "FILE:LINE: reason".
void complainAbout(const QString &fileName, qint64 line, const QString &reason);

} // namespace workbench
