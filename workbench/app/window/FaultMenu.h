#pragma once

#include <QMenu>
#include <QVector>

class QLabel;

namespace workbench {

class FaultControl;

/// A menu with a checkable entry for each fault and one that ends them all. An entry switches its
/// fault on with the parameter that it shows: the preset one, or the one that it was on with last.
class FaultMenu : public QMenu
{
    Q_OBJECT

public:
    /// `control` must outlive the menu.
    explicit FaultMenu(FaultControl &control, QWidget *parent = nullptr);

private:
    void addFault(int index);
    void showActive();

    FaultControl &control;
    QVector<QAction *> entries; ///< in the order of faultTable()
    QAction *allOff = nullptr;
};

/// A line for the status bar that names the faults that are on and is hidden while there are none.
/// `control` must outlive it.
QLabel *makeFaultLabel(FaultControl &control);

} // namespace workbench
