#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTime>

namespace workbench {

struct LogEntry
{
    QTime time;
    QtMsgType level = QtDebugMsg;
    QString category;
    QString text;
};

/// Collects the program's messages while it exists and passes them, except those of the info level,
/// on to whoever got them before.
/// Messages may come from any thread; everything else is for the GUI thread. At most one exists.
class MessageLog : public QObject
{
    Q_OBJECT

public:
    explicit MessageLog(QObject *parent = nullptr);
    ~MessageLog() override;

    /// The newest entries, oldest first; older ones are dropped beyond a few thousand.
    const QList<LogEntry> &entries() const { return kept; }

signals:
    void added(const LogEntry &entry);

private:
    static void handle(QtMsgType level, const QMessageLogContext &context, const QString &text);
    void add(const LogEntry &entry);

    QList<LogEntry> kept;
};

} // namespace workbench
