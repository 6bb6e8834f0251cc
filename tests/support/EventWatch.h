#pragma once

#include <QCoreApplication>
#include <QEvent>

#include <functional>
#include <utility>

/// Shows a test every event of the application before its receiver gets it, as long as the watch
/// lives. Lets a test look, and act, in the middle of an operation of the tool.
class EventWatch : public QObject
{
public:
    using Handler = std::function<void(QObject *receiver, QEvent *event)>;

    explicit EventWatch(Handler eventHandler)
        : handler(std::move(eventHandler))
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        handler(receiver, event);
        return false;
    }

private:
    Handler handler;
};
