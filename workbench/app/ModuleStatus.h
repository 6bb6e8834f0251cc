#pragma once

#include "LinkRates.h"

#include <QObject>

class QLabel;
class QStatusBar;

namespace bench {

class SimulatedModule;

/// What the status bar says about a module: whether the axes move, how busy the link is and what a
/// request costs. Brings the chip up to date on the way, so that it never has to catch up on much.
class ModuleStatus : public QObject
{
    Q_OBJECT

public:
    /// `module` must outlive this object, which belongs to the status bar.
    ModuleStatus(SimulatedModule &module, QStatusBar *bar);

    void update();

private:
    QLabel *addLabel(QStatusBar *bar, const QString &name, const QString &widest);

    SimulatedModule &module;
    LinkRates rates;
    QLabel *motion;
    QLabel *samples;
    QLabel *requests;
    QLabel *cost;
};

} // namespace bench
