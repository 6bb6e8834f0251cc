#pragma once

#include "HostModule.h"
#include "RecordingLink.h"
#include "ToolsInterface.h"

#include <QAbstractEventDispatcher>
#include <QPointer>
#include <QSet>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QValueAxis>

#include <memory>

class XmlRegisterWidget;

/// The tool's factory object out of the built module, loaded once a process. Null, with the
/// loader's reason printed, when it cannot be loaded.
ToolsInterface *toolPrototype();

/// Calls every slot of the tool's own class once, in order; the timer event is null.
void callEverySlot(QObject *tool);

/// What the chip of a test rig lacks.
struct RigGaps
{
    QSet<QString> registers;
    QSet<QString> fields;
    bool hasChip = true;
    bool hasModule = true;
};

/// A working tool out of the built module, driven from outside: by events, object names, the
/// meta-object and its timers. Its module answers from a recording link. The registers have
/// addresses of the rig's own, made so that a tool that assumes an address or an order shows.
class ToolRig
{
public:
    explicit ToolRig(unsigned char motor = 0, const RigGaps &gaps = {});
    ~ToolRig();

    ToolsInterface *tool() const { return working.data(); }
    HostModule *module() const { return hostModule.get(); }
    RecordingLink link;

    /// Deletes the tool, as its host does.
    void deleteTool();

    /// Puts the tool on screen at a size at which the chart has a plot area, and calls
    /// showPlugin().
    void show();

    /// A panel widget by its object name; the test fails on a null.
    template <typename Widget>
    Widget *widget(const char *name) const
    {
        return working->findChild<Widget *>(QLatin1String(name));
    }

    /// The register widget of a field, or null.
    XmlRegisterWidget *registerWidget(const char *identifier) const;

    QtCharts::QChartView *view() const;
    QtCharts::QChart *chart() const { return view()->chart(); }
    QtCharts::QValueAxis *axisX() const;
    QtCharts::QValueAxis *axisY() const;
    QtCharts::QScatterSeries *target() const;
    QtCharts::QScatterSeries *actual() const;
    QtCharts::QLineSeries *trace() const;

    /// Limits as "M0min M0max M1min M1max".
    QString limits() const;
    /// Sets all four limits; they take effect in an order that lets any valid set through.
    void setLimits(int m0min, int m0max, int m1min, int m1max);

    /// The tool's slot of that name.
    bool call(const char *slot) const { return QMetaObject::invokeMethod(tool(), slot); }
    bool setTarget(QPointF point, QPoint outer = QPoint()) const;

    /// The intervals of the tool's active timers, ascending.
    QList<int> timerIntervals() const;
    /// Delivers the event of the tool's timer with that interval; false when none is active.
    bool deliverTimer(int intervalMs) const;
    bool sampleTick() const { return deliverTimer(0); }
    /// Delivers the update timer's event, whichever interval it has.
    bool updateTick() const;
    /// Lets the module report these positions at the next sample tick, and delivers that.
    bool sample(int x, int y);

    /// The pixel of a chart value in the view's viewport.
    QPoint pixelOf(const QPointF &value) const;

    static unsigned int address(const QString &registerName);
    /// Sets what the chip holds, without a request.
    void setRegister(const QString &name, int value) { link.values.insert(address(name), value); }
    int registerValue(const QString &name) const { return link.values.value(address(name)); }

    /// The requests since the last time, with register names: "write M0_VMAX m0 500",
    /// "read M0_VACTUAL m0", "user 0xFD".
    QStringList takeCalls();
    /// Only the writes of them.
    QStringList takeWrites() { return takeCalls().filter(QStringLiteral("write ")); }

private:
    std::unique_ptr<HostModule> hostModule;
    QPointer<ToolsInterface> working;
};

/// Holds modifier keys down while it lives, for the application as a whole: events that a test
/// makes itself neither change what is held nor have to repeat it.
class HeldKeys
{
public:
    HeldKeys(QWidget *receiver, Qt::KeyboardModifiers modifiers);
    ~HeldKeys();

private:
    QPointer<QWidget> widget;
};
