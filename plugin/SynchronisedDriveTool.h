#pragma once

#include "ToolsInterface.h"

#include <QBasicTimer>
#include <QPointF>
#include <QPointer>
#include <QVector>
#include <QtCharts/QChartGlobal>

class ChartView;
class QAction;
class QSpinBox;
class TraceSeries;
class Ui_SynchronisedDriveTool;
class XmlProductIC;
class XmlRegisterWidget;
class XmlRegisterWidgetContainer;
class XmlValueRegister;

namespace QtCharts {
class QChart;
class QLineSeries;
class QScatterSeries;
class QValueAxis;
} // namespace QtCharts

/// Drives the two axes of a motion-control chip to a target together and draws where they go.
/// Positions are in the chip's position units; axis 0 is horizontal, axis 1 vertical.
///
/// An object is either the prototype, which has no panel and only makes working tools, or a working
/// tool, complete from its construction and idle until the host shows it.
///
/// A host may delete a working tool from its event loop, and wherever the tool hands control to it:
/// in a request to the module or a row, a device-tree operation, a dialog, a click, a pick. When
/// start and stop are pressed inside each other's requests, stop wins: a start that was pressed in
/// the middle of a stop is stopped again.
class SynchronisedDriveTool : public ToolsInterface
{
    Q_OBJECT
    Q_INTERFACES(ToolsInterface)

public:
    /// The prototype.
    SynchronisedDriveTool();
    /// A working tool. The module is not owned and outlives the tool; null makes a tool that has a
    /// panel but drives nothing.
    SynchronisedDriveTool(const QString &name, unsigned char motor, QVXLModuleInterface *module);
    ~SynchronisedDriveTool() override;

    QString version() override;
    void showPlugin() override;
    void hidePlugin() override;
    ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module) override;

private slots:
    // The event handlers and the host's operation are slots on purpose: callable through the
    // meta-object too.
    void initExternTools();
    void timerEvent(QTimerEvent *ev) override;
    void wheelEvent(QWheelEvent *ev) override;
    void siblingIsVisible(const QString &key, bool isVisible) override;
    void setTargetPosition(QPointF point, QPoint outer = QPoint());
    void zoom();
    void on_spM0min_valueChanged(int arg1);
    void on_spM0max_valueChanged(int arg1);
    void on_spM1min_valueChanged(int arg1);
    void on_spM1max_valueChanged(int arg1);
    void on_pbStart_clicked();
    void on_pbStop_clicked();
    void on_btnClearTraces_clicked();
    void on_btnShowRegister_clicked();
    void on_btnShowPosition_clicked();

private:
    using Tool = SynchronisedDriveTool;
    class ModuleRequests;

    /// How often each of these was begun. A host may handle events while it waits for the module:
    /// from this an operation knows what came in the middle of it.
    struct Begun
    {
        unsigned int starts = 0;
        unsigned int stops = 0;
        unsigned int picks = 0;
        unsigned int updateTicks = 0;
        unsigned int hides = 0;
        unsigned int rampChecks = 0; ///< Since the one under way; 0 when there is none.
        int stopsWithoutStart = 0;   ///< Under way, in whose middle no start begins.

        /// Looks at the first five, which change what the axes do or what is known of it.
        bool operator!=(const Begun &other) const;
    };

    /// An axis of the chart and its two limit boxes: two views of one state. All null while the
    /// tool has no chart.
    struct Limits
    {
        QSpinBox *lower = nullptr;
        QSpinBox *upper = nullptr;
        QtCharts::QValueAxis *axis = nullptr;
    };
    using Coordinate = double (QPointF::*)() const;

    bool isComplete() const;

    // Set-up, in the constructor's order, and what its steps are made of.
    void initPanel();
    void initChip();
    void initXmlRegister();
    void initChart();
    void initChartView();
    void initAxes();
    void initSeries();
    void initTargetSeries();
    void initActualSeries();
    void initLimits();
    void initLinkButtons();
    void initFlightPath();
    void connectRangeHandlers();

    // Steps of initXmlRegister().
    void bindRegisters(QList<QVariant> &addresses);
    void bindFields(XmlRegisterWidgetContainer *container);
    void listRegisters(QList<QVariant> addresses);
    void listRampRegisters();
    void watchWrites();
    void registerWritten(unsigned short address);

    unsigned char motorByte();
    int getRegisterValue(const QString &name);

    // Sibling tools and the ramp check.
    void linkSibling(ToolsInterface *sibling, const QString &key);
    void setRampLink();
    void markRampLink(const QStringList &m0Zeros, const QStringList &m1Zeros);

    // Motion.
    void stop();
    void endFlightPath();

    // Target, drawing and view.
    QPointF target() const;
    QPointF actual() const;
    TraceSeries *trace() const;
    void targetWidgetChanged(int axis, int value);
    Limits horizontal() const;
    Limits vertical() const;
    void lowerLimitChanged(const Limits &limits, int value);
    void upperLimitChanged(const Limits &limits, int value);
    void pushLimits(QPoint outer);

    // The polling cycle.
    void sampleTick(bool isMoving);
    void updateTick();
    void writeNewTarget(ModuleRequests &requests);
    void drawSamples(ModuleRequests &requests);
    void appendToTrace(const QVector<QPointF> &points);
    void keepInView(const Limits &limits, double position);
    void checkEndOfMove(ModuleRequests &requests);
    void runNextFlightPathPoint();
    void trimTrace();

    // Flight path.
    void runFlightPath(const QAction *action);
    void editFlightPath(const QAction *action);

    // Zoom.
    void rangeChanged(const Limits &limits, Coordinate of, double min, double max);
    template <typename Accepts>
    void redrawTrace(const Accepts &isInRange);
    void shiftLimits(const Limits &limits, qint64 by);

    // Also their order in memory, and so of destruction.
    Ui_SynchronisedDriveTool *ui = nullptr;
    ChartView *chartView = nullptr;
    QtCharts::QChart *chart = nullptr;
    QtCharts::QValueAxis *axisY = nullptr;
    QtCharts::QValueAxis *axisX = nullptr;
    QtCharts::QScatterSeries *actualSeries = nullptr;
    QtCharts::QScatterSeries *targetSeries = nullptr;
    QtCharts::QLineSeries *traceSeries = nullptr;
    XmlProductIC *icProduct = nullptr;
    QPointer<XmlValueRegister> rampModeRegister;
    QPointer<XmlValueRegister> m0VactualRegister;
    QPointer<XmlValueRegister> m1VactualRegister;
    QPointer<XmlValueRegister> m0VmaxRegister;
    QPointer<XmlValueRegister> m1VmaxRegister;
    QPointer<XmlRegisterWidget> m0XactualWidget;
    QPointer<XmlRegisterWidget> m1XactualWidget;
    QPointer<XmlRegisterWidget> m0XtargetWidget;
    QPointer<XmlRegisterWidget> m1XtargetWidget;
    QBasicTimer updateTimer;
    QBasicTimer sampleTimer;
    QVector<QPointF> pendingSamples;
    QVector<QPointF> tracePoints;
    QVector<QPointF> flightPath;
    Begun begun;
};
