#pragma once

#include <QDockWidget>

class QCheckBox;
class QPlainTextEdit;

namespace workbench {

struct LogEntry;
class MessageLog;

/// Shows the program's messages, those from before the dock was made included. Has a switch for the
/// low-level lines that tools write only when asked to.
class LogDock : public QDockWidget
{
    Q_OBJECT

public:
    /// `log` is not owned and must outlive the dock.
    LogDock(const MessageLog &log, QWidget *parent);

private:
    QWidget *makeButtons();
    void show(const LogEntry &entry);
    void setLowLevelEnabled(bool enabled);

    QPlainTextEdit *text = nullptr;
    QCheckBox *lowLevel = nullptr;
};

} // namespace workbench
