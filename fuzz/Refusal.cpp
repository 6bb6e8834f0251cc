#include "Targets.h"

namespace fuzz {
namespace {

/// An empty last line counts: it is where a file that was cut off should go on.
qint64 lineCount(const QByteArray &bytes)
{
    return 1 + bytes.count('\n') + bytes.count('\r');
}

bool isOneLine(const QString &text)
{
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            return false;
    }
    return !text.isEmpty();
}

} // namespace

QString checkRefusal(const QByteArray &bytes, qint64 line, const QString &reason)
{
    if (line < 1 || line > lineCount(bytes))
        return QStringLiteral("an error on line %1 of %2").arg(line).arg(lineCount(bytes));
    if (!isOneLine(reason))
        return QStringLiteral("a reason that is not one line: ") + reason;
    if (reason.endsWith(QLatin1Char('.')))
        return QStringLiteral("a reason with a full stop: ") + reason;
    return QString();
}

} // namespace fuzz
