#include "ToolWindow.h"

#include "DeviceTreeView.h"

#include "DynamicProperty.h"
#include "HostRegistry.h"
#include "ToolDetails.h"
#include "ToolsInterface.h"

#include <QCloseEvent>
#include <QMdiArea>
#include <QPropertyAnimation>

namespace workbench {

namespace {

constexpr int growMs = 120;
constexpr int growStartShare = 4; ///< the window grows from this part of its size

Qt::WindowFlags hintedFlags(const QObject *tool)
{
    return Qt::WindowFlags(static_cast<int>(tool->property(DynamicProperty::WindowFlags).toUInt()));
}

} // namespace

ToolWindow::ToolWindow(ToolsInterface *tool, QMdiArea *area)
    : QMdiSubWindow(area, hintedFlags(tool))
    , content(tool)
{
    setAttribute(Qt::WA_DeleteOnClose, false);
    setWidget(tool);
    area->addSubWindow(this);
    setWindowTitle(displayName(tool));
    setWindowIcon(QIcon(ToolDetails::of(tool).iconPath));
    hide();
}

ToolsInterface *ToolWindow::tool() const
{
    return content;
}

void ToolWindow::open()
{
    if (!content)
        return;
    const bool isNew = !isOnScreen;
    content->show();
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    if (mdiArea())
        mdiArea()->setActiveSubWindow(this);
    if (!isNew)
        return;
    if (wantsAnimation())
        growFromCentre();
    setOnScreen(true);
}

void ToolWindow::closeEvent(QCloseEvent *event)
{
    // Not the base's handler: that closes the tool as well, which could delete it.
    event->accept();
    if (isOnScreen)
        setOnScreen(false);
}

void ToolWindow::setOnScreen(bool onScreen)
{
    isOnScreen = onScreen;
    if (!content)
        return;
    const QString key = content->key();
    if (onScreen)
        content->showPlugin();
    else
        content->hidePlugin();
    HostRegistry::announceVisibility(content, onScreen);
    emit visibilityChanged(key, onScreen);
}

bool ToolWindow::wantsAnimation() const
{
    return !content->property(DynamicProperty::DoNotAnimate).toBool() && !isMaximized();
}

void ToolWindow::growFromCentre()
{
    const QRect full = geometry();
    QRect small(QPoint(), full.size() / growStartShare);
    small.moveCenter(full.center());
    auto *const animation = new QPropertyAnimation(this, "geometry", this);
    animation->setDuration(growMs);
    animation->setStartValue(small);
    animation->setEndValue(full);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

} // namespace workbench
