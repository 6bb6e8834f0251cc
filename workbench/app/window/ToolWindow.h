#pragma once

#include <QMdiSubWindow>
#include <QPointer>

class QMdiArea;
class ToolsInterface;

namespace workbench {

/// The sub-window of one tool. Closing it takes the tool off the screen and keeps both; the tool is
/// deleted with the window. Honours the tool's hints about its window (see DynamicProperty.h).
class ToolWindow : public QMdiSubWindow
{
    Q_OBJECT

public:
    /// Takes the tool over. The window is not on screen yet.
    ToolWindow(ToolsInterface *tool, QMdiArea *area);

    /// Null when the tool has been deleted by somebody else.
    ToolsInterface *tool() const;

    /// Puts the tool on screen, or to the front when it is there already.
    void open();

signals:
    /// The tool was put on screen or taken off it.
    void visibilityChanged(const QString &key, bool isOnScreen);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void setOnScreen(bool onScreen);
    void growFromCentre();
    bool wantsAnimation() const;

    QPointer<ToolsInterface> content;
    bool isOnScreen = false;
};

} // namespace workbench
