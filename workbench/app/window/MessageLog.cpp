#include "MessageLog.h"

#include <QMutex>

namespace workbench {

namespace {

constexpr int capacity = 5000;

QMutex collectorMutex;
MessageLog *collector = nullptr;
QtMessageHandler nextHandler = nullptr;

} // namespace

MessageLog::MessageLog(QObject *parent)
    : QObject(parent)
{
    const QMutexLocker locker(&collectorMutex);
    collector = this;
    nextHandler = qInstallMessageHandler(&MessageLog::handle);
}

MessageLog::~MessageLog()
{
    const QMutexLocker locker(&collectorMutex);
    qInstallMessageHandler(nextHandler);
    collector = nullptr;
}

void MessageLog::handle(QtMsgType level, const QMessageLogContext &context, const QString &text)
{
    const LogEntry entry{QTime::currentTime(), level, QString::fromLatin1(context.category), text};
    QtMessageHandler next = nullptr;
    {
        const QMutexLocker locker(&collectorMutex);
        next = nextHandler;
        // Always queued: a message may be written in the middle of anything, drawing the log
        // included.
        if (MessageLog *const log = collector)
            QMetaObject::invokeMethod(
                log, [log, entry] { log->add(entry); }, Qt::QueuedConnection);
    }
    // What is merely worth knowing would be noise on a terminal.
    if (next && level != QtInfoMsg)
        next(level, context, text);
}

void MessageLog::add(const LogEntry &entry)
{
    kept.append(entry);
    if (kept.size() > capacity)
        kept.removeFirst();
    emit added(entry);
}

} // namespace workbench
