#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace workbench {

/// Turns SIGINT and SIGTERM into a Qt signal while it exists; one at a time. A second signal ends
/// the process at once, in case whoever handles the first is stuck. GUI thread.
class StopSignal : public QObject
{
    Q_OBJECT

public:
    explicit StopSignal(QObject *parent = nullptr);
    ~StopSignal() override;

signals:
    void stopRequested();

private:
    void drain();

    QSocketNotifier *notifier = nullptr;
};

} // namespace workbench
