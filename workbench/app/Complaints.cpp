#include "Complaints.h"

#include <cstdio>

namespace workbench {

void complain(const QString &text)
{
    std::fputs(QStringLiteral("workbench: %1\n").arg(text).toLocal8Bit().constData(), stderr);
}

void complainAbout(const QString &fileName, qint64 line, const QString &reason)
{
    const QString text = QStringLiteral("%1:%2: %3\n").arg(fileName, QString::number(line), reason);
    std::fputs(text.toLocal8Bit().constData(), stderr);
}

} // namespace workbench
