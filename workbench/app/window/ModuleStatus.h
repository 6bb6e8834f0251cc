#pragma once

#include "LinkRates.h"

#include <QObject>

class QLabel;
class QStatusBar;

namespace workbench {

class SimulatedModule;
class TapeLink;

/// What the status bar says about a module: whether the axes move, how busy the link is and what a
/// request costs, or how far the tape has come that is played instead. Brings the chip up to date
/// on the way, so that it never has to catch up on much.
class ModuleStatus : public QObject
{
    Q_OBJECT

public:
    /// `module` must outlive this object, which belongs to the status bar.
    ModuleStatus(SimulatedModule &module, QStatusBar *bar);

    /// From here on everything is about the tape, which must outlive this object.
    void showReplay(const TapeLink &played, const QString &fileName);

    void update();

private:
    void updateReplay();
    static QString deviatingText();
    QString replayText(int repeated, const QString &state) const;
    QLabel *addLabel(QStatusBar *bar, const QString &name, const QString &widest);

    SimulatedModule &module;
    const TapeLink *tape = nullptr;
    QString tapeName;
    LinkRates rates;
    QLabel *replay;
    QLabel *motion;
    QLabel *samples;
    QLabel *requests;
    QLabel *cost;
};

} // namespace workbench
