#pragma once

class QAbstractButton;
class QPoint;
class QWidget;

namespace workbench {

/// Presses and releases the left button at a pixel of the widget, which may be gone afterwards.
void click(QWidget *receiver, const QPoint &at);

/// Clicks in the middle. False, with nothing pressed, where there is no button or it is disabled.
/// Returns when what the button does is done, which for a modal dialog is when that is closed.
bool press(QAbstractButton *button);

} // namespace workbench
