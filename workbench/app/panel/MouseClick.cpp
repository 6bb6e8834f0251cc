#include "MouseClick.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QPointer>

namespace workbench {

namespace {

void sendMouse(QWidget *receiver, QEvent::Type type, const QPoint &at, Qt::MouseButtons held)
{
    QMouseEvent event(type, at, receiver->mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(receiver, &event);
}

} // namespace

void click(QWidget *receiver, const QPoint &at)
{
    const QPointer<QWidget> guard(receiver);
    sendMouse(receiver, QEvent::MouseButtonPress, at, Qt::LeftButton);
    if (guard)
        sendMouse(receiver, QEvent::MouseButtonRelease, at, Qt::NoButton);
}

bool press(QAbstractButton *button)
{
    if (!button || !button->isEnabled())
        return false;
    click(button, button->rect().center());
    return true;
}

} // namespace workbench
