#pragma once

#include "PluginRig.h"
#include "RecordingLink.h"
#include "SimulatedModule.h"

#include <QPolygonF>

#include <memory>

class QSpinBox;
class XmlValueRegister;

/// Base of the tests of the position mode tool: a visible tool of motor 0 on a simulated module of
/// the shipped chip, in stepped time.
class PositionRig : public PluginRig
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

protected:
    static constexpr qint64 nsPerMs = 1000000;

    PositionRig();

    /// Makes a visible tool in place of the one before.
    void open(unsigned char motor = 0);
    /// From now on the module's requests are written down and answered from the link's values.
    void record();
    XmlValueRegister *reg(const QString &name) const;

    void tick() const;
    /// Lets the axes run, with a tick at the end.
    void run(int ms);
    void runUntilStandstill();

    void enter(const QString &box, const QString &text, bool confirms = true) const;
    void click(const QString &button) const;
    QSpinBox *box(const QString &name) const;
    QString label(const QString &name) const;
    QWidget *plot() const;
    QPolygonF profile() const;
    QString message() const;

    workbench::SteppedClock clock;
    RecordingLink link;
    std::unique_ptr<workbench::SimulatedModule> simulated;
};
