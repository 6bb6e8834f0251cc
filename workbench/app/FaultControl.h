#pragma once

#include "Fault.h"

#include <QObject>
#include <QVector>

namespace workbench {

class FaultyLink;
class SimulatedModule;

/// Switches the faults of a module's link for all who show or offer them, and lets those that go
/// beyond the link happen to the chip and to the host's objects. GUI thread.
class FaultControl : public QObject
{
    Q_OBJECT

public:
    /// Refers to both, which must outlive this object. The link gets its actions from here.
    FaultControl(FaultyLink &link, SimulatedModule &module, QObject *parent = nullptr);
    ~FaultControl() override;

    void switchOn(const Fault &fault);
    void switchOff(FaultKind kind);
    void switchOffAll();

    /// In the order of faultTable().
    QVector<Fault> active() const;

signals:
    void changed();

private:
    void deleteRegisters();
    void deleteWidgets();

    FaultyLink &link;
    SimulatedModule &module;
};

} // namespace workbench
