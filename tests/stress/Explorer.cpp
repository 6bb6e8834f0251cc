#include "Explorer.h"

#include "FlightDialogs.h"
#include "ToolRig.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>
#include <QWheelEvent>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

#include <optional>

namespace {

using Event = ExplorerEvent;

constexpr qint64 nsPerMs = 1000000;
constexpr int gridStep = 256;
constexpr int minimumSpan = 512;

const char *const limitNames[] = {"spM0min", "spM0max", "spM1min", "spM1max"};

struct RegisterChoice
{
    const char *name;
    int limit; ///< of the values written; below 0: both signs
};
constexpr RegisterChoice registerChoices[] = {
    {"M0_XTARGET", -20000}, {"M1_XTARGET", -20000}, {"M0_VMAX", 20000}, {"M1_VMAX", 20000},
    {"M0_AMAX", 20000},     {"M1_AMAX", 20000},     {"M0_DMAX", 20000}, {"M1_DMAX", 20000},
    {"M0_V1", 2000},        {"M1_A1", 9000},        {"RAMPMODE", 1024}, {"M1_D2", 9000},
};

/// Points for a path, some of them equal.
QVector<QPointF> pathOf(const Event &event)
{
    std::mt19937 random(static_cast<unsigned int>(event.b));
    QVector<QPointF> points;
    for (int i = 0; i < event.a; ++i)
        points.append({double(random() % 4000) - 2000.0, double(random() % 7 * 300)});
    return points;
}

QString fileOf(const QVector<QPointF> &points)
{
    static const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("path.csv"));
    QByteArray lines = "path\n";
    for (const QPointF &point : points)
        lines += QByteArray::number(point.x()) + ';' + QByteArray::number(point.y()) + '\n';
    writeFile(name, lines);
    return name;
}

/// Warnings since the last time; they are printed as well.
QStringList &warnings()
{
    static QStringList all;
    return all;
}

QtMessageHandler &nextHandler()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}

void collectWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QLatin1String known("This plugin does not support propagateSizeHints()");
    if (message == known)
        return;
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings() << message;
    nextHandler()(type, context, message);
}

} // namespace

Explorer::Explorer(unsigned int seed)
    : rig(seed)
{
    warnings().clear();
    nextHandler() = qInstallMessageHandler(collectWarnings);
}

Explorer::~Explorer()
{
    counts().starts += rig.starts();
    counts().movesEnded += rig.movesEnded();
    qInstallMessageHandler(nextHandler());
}

Explorer::Counts &Explorer::counts()
{
    static Counts all;
    return all;
}

void Explorer::apply(const Event &event)
{
    if (event.kind == Event::Nested) {
        nested = event;
        return;
    }
    using workbench::FaultKind;
    const bool hadSpin = rig.faulty.isOn(FaultKind::Spin);
    const bool isNesting = nested.has_value();
    wasUpdate = event.kind == Event::Update && !hadSpin && !isNesting;
    if (isNesting) {
        rig.faulty.switchOn(workbench::presetFault(FaultKind::Spin));
        rig.postInStep(nested->a, [this] { actInside(); });
        rig.hostSide.keepCounting(true);
    }
    act(event);
    rig.hostSide.keepCounting(false);
    rig.hostSide.disarm();
    QCoreApplication::sendPostedEvents(&rig);
    if (isNesting && !hadSpin)
        rig.faulty.switchOff(FaultKind::Spin);
    // Deleted from inside, the tool is opened again as the host would.
    if (!rig.tool()) {
        counts().deletedInside += event.kind != Event::Reopen;
        rig.openTool();
    }
    hasLostRegisters |= rig.faulty.isOn(FaultKind::DeleteRegisters);
}

/// In the middle of a request, or right behind the event if that ended before it was its turn.
void Explorer::actInside()
{
    const Event inner{static_cast<Event::Kind>(nested->b), 400, 600};
    nested.reset();
    ++counts().nested;
    if (rig.tool())
        act(inner);
}

void Explorer::act(const Event &event)
{
    switch (event.kind) {
    case Event::Elsewhere:
    case Event::FaultOn:
    case Event::FaultOff:
    case Event::AllFaultsOff:
    case Event::Step:
        actOnModule(event);
        break;
    case Event::Pick:
    case Event::Drag:
    case Event::Band:
        mouse(event);
        break;
    case Event::AcceptPath:
    case Event::LoadPath:
        takePath(event);
        break;
    default:
        actOnTool(event);
    }
}

void Explorer::actOnTool(const Event &event)
{
    switch (event.kind) {
    case Event::Sample:
        return rig.sampleTick();
    case Event::Update:
        return rig.updateTick();
    case Event::Round:
        return rig.round(event.a);
    case Event::Start:
        return rig.pressStart();
    case Event::Stop:
        return rig.pressStop();
    case Event::Limit:
        return setLimit(event);
    case Event::Zoom:
        return rig.widget<QPushButton>(event.a ? "btnZoomIn" : "btnZoomOut")->click();
    case Event::Wheel:
        return wheel(event);
    case Event::Clear:
        return rig.widget<QPushButton>("btnClearTraces")->click();
    case Event::TraceLength:
        return rig.widget<QSpinBox>("spTraces")->setValue(event.a);
    case Event::EditRow:
        return editRow(event);
    case Event::RunPath:
        return rig.runFlightPath();
    case Event::Show:
        return rig.show();
    case Event::Hide:
        return rig.hide();
    case Event::Resize:
        return rig.tool()->resize(700 + event.a * 300, 400 + (event.b & 0xFF));
    default:
        rig.deleteTool();
    }
}

void Explorer::actOnModule(const Event &event)
{
    if (event.kind == Event::Step) {
        rig.clock.advance(event.a * nsPerMs);
    } else if (event.kind == Event::FaultOn) {
        switchOn(event);
    } else if (event.kind == Event::FaultOff) {
        rig.faulty.switchOff(workbench::faultTable().at(event.a).kind);
    } else if (event.kind == Event::AllFaultsOff) {
        rig.faulty.switchOffAll();
    } else {
        const RegisterChoice &choice = registerChoices[event.a];
        const int value = choice.limit < 0 ? event.b % -choice.limit : qAbs(event.b) % choice.limit;
        rig.forgetStop();
        rig.writeFromElsewhere(choice.name, value);
        rig.forgetStop();
    }
}

void Explorer::switchOn(const Event &event)
{
    const workbench::FaultInfo &info = workbench::faultTable().at(event.a);
    const bool isFinal = info.kind == workbench::FaultKind::DeleteRegisters ||
                         info.kind == workbench::FaultKind::DeleteWidgets;
    // What does not come back would make the rest of too many sequences poor.
    if (isFinal && event.b % 8 != 0)
        return;
    workbench::Fault fault = workbench::presetFault(info.kind);
    if (info.parameter && event.b % 2 != 0 && !isFinal) {
        const double part = (event.b & 0xFF) / 255.0;
        const double most = qMin(info.parameter->maximum, qMax(1.0, info.parameter->preset * 4));
        fault.parameter = info.parameter->minimum + part * (most - info.parameter->minimum);
        if (info.parameter->isWhole)
            fault.parameter = std::floor(fault.parameter);
    }
    rig.faulty.switchOn(fault);
}

void Explorer::setLimit(const Event &event)
{
    // Often near the other limit of the axis, where the two have to keep apart.
    int value = event.b;
    if (event.b % 3 == 0)
        value = rig.widget<QSpinBox>(limitNames[event.a ^ 1])->value() + event.b % 1000;
    rig.widget<QSpinBox>(limitNames[event.a])->setValue(value);
}

void Explorer::mouse(const Event &event)
{
    const auto *view = rig.view();
    const QRectF plot = view->chart()->plotArea();
    const auto at = [&plot](int x, int y) {
        return (plot.topLeft() + QPointF(plot.width() * x, plot.height() * y) / 1000).toPoint();
    };
    rig.forgetStop();
    const bool isBand = event.kind == Event::Band;
    std::optional<HeldKeys> keys;
    if (isBand)
        keys.emplace(rig.tool(), Qt::ControlModifier);
    if (isBand && event.a) {
        mouseStep(QEvent::MouseButtonPress, at(500, 500), Qt::RightButton);
        mouseStep(QEvent::MouseButtonRelease, at(500, 500), Qt::RightButton);
        return;
    }
    const QPoint end = isBand ? at(500 + (event.b & 0xFF), 400) : at(event.a, event.b);
    const QPoint begin = event.kind == Event::Pick ? end : at(500, 500);
    mouseStep(QEvent::MouseButtonPress, begin, Qt::LeftButton);
    for (int part = 1; part <= 2 && begin != end; ++part)
        mouseStep(QEvent::MouseMove, begin + (end - begin) * part / 2, Qt::LeftButton);
    mouseStep(QEvent::MouseButtonRelease, end, Qt::LeftButton);
}

void Explorer::mouseStep(QEvent::Type type, const QPoint &at, Qt::MouseButton button)
{
    const auto *view = rig.view();
    QMouseEvent event(type, at, at, view->viewport()->mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button),
                      QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(view->viewport(), &event);
}

void Explorer::wheel(const Event &event)
{
    const QPointF at(event.b, event.b / 2);
    const HeldKeys keys(rig.tool(), Qt::ControlModifier);
    QWheelEvent turn(at, at, QPoint(), QPoint(0, event.a), Qt::NoButton, Qt::ControlModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(rig.tool(), &turn);
}

void Explorer::editRow(const Event &event)
{
    auto *input = rig.widget<QSpinBox>(event.a ? "M1_XTARGET_input" : "M0_XTARGET_input");
    if (!input || !input->isEnabled() || input->isReadOnly())
        return;
    rig.forgetStop();
    rig.hostSide.reset();
    input->selectAll();
    const QPointer<QSpinBox> guarded(input);
    const QString text = QString::number(event.b % 30000);
    for (const QChar &typed : text) {
        QKeyEvent key(QEvent::KeyPress, typed.unicode(), Qt::NoModifier, typed);
        if (guarded)
            QCoreApplication::sendEvent(input, &key);
    }
    QKeyEvent confirm(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    if (guarded)
        QCoreApplication::sendEvent(input, &confirm);
    // The row's own write reaches the module behind a stop that was pressed in the middle of it,
    // and the marker follows only if it succeeds.
    rig.forgetStop();
    rig.forgetWrittenTarget();
}

void Explorer::takePath(const Event &event)
{
    const QVector<QPointF> points = pathOf(event);
    const bool accepts = event.b % 4 != 0;
    rig.forgetStop();
    // The length holds before a continuation can look at it.
    if (accepts)
        rig.pathLength = points.size();
    const auto fill = [&](QDialog *dialog) {
        if (event.kind == Event::LoadPath) {
            loadFile(dialog, fileOf(points));
            return;
        }
        auto *view = dialog->findChild<QtCharts::QChartView *>();
        auto *preview = qobject_cast<QtCharts::QLineSeries *>(view->chart()->series().value(0));
        preview->replace(points);
    };
    if (rig.inDialog(fill, accepts))
        ++counts().pathsTaken;
}

QString Explorer::broken()
{
    QStringList found = rig.takeViolations() + warnings();
    warnings().clear();
    checkSeries(found);
    checkTarget(found);
    checkLimits(found);
    checkTimers(found);
    return found.join(QStringLiteral("; "));
}

/// A target that is not marked as new is the one that was written last.
void Explorer::checkTarget(QStringList &found) const
{
    const auto written = rig.writtenTarget();
    const bool isNew = rig.series(0)->property("NewPt").toBool();
    const bool hasRows = rig.registerWidgets().size() == 4;
    if (!written || isNew || !hasRows || hasLostRegisters)
        return;
    if (*written != FaultRig::asTarget(rig.target()))
        found << QStringLiteral("the target shown was not written, but %1, %2")
                     .arg(written->x())
                     .arg(written->y());
}

void Explorer::checkSeries(QStringList &found) const
{
    if (rig.series(0)->count() != 1 || rig.series(1)->count() != 1) {
        found << QStringLiteral("target or actual position is not one point");
        return;
    }
    for (const QPointF &point : {rig.target(), rig.actual()}) {
        if (!qIsFinite(point.x()) || !qIsFinite(point.y()))
            found << QStringLiteral("a position is not finite");
    }
    const int drawn = rig.series(2)->count();
    if (wasUpdate && !rig.timerIntervals().isEmpty() &&
        drawn > rig.widget<QSpinBox>("spTraces")->value() && rig.timerIntervals() != QList<int>{0})
        found << QStringLiteral("the trace has %1 points").arg(drawn);
    if (drawn == 0)
        found << QStringLiteral("the trace is empty");
}

void Explorer::checkLimits(QStringList &found) const
{
    for (int axis = 0; axis < 2; ++axis) {
        const int low = rig.widget<QSpinBox>(limitNames[2 * axis])->value();
        const int high = rig.widget<QSpinBox>(limitNames[2 * axis + 1])->value();
        if (low % gridStep != 0 || high % gridStep != 0 || high - low < minimumSpan)
            found << QStringLiteral("limits %1 to %2 of axis %3").arg(low).arg(high).arg(axis);
        // Limits that set each other off may leave a bound tighter than it need be.
        if (rig.widget<QSpinBox>(limitNames[2 * axis])->maximum() > high - minimumSpan ||
            rig.widget<QSpinBox>(limitNames[2 * axis + 1])->minimum() < low + minimumSpan)
            found << QStringLiteral("the limits of axis %1 could come closer").arg(axis);
        const auto *shown = qobject_cast<QtCharts::QValueAxis *>(
            rig.view()->chart()->axes(axis == 0 ? Qt::Horizontal : Qt::Vertical).value(0));
        if (!qFuzzyCompare(shown->min() + 1e9, low + 1e9) ||
            !qFuzzyCompare(shown->max() + 1e9, high + 1e9))
            found << QStringLiteral("axis %1 shows %2 to %3 and not %4 to %5")
                         .arg(axis)
                         .arg(shown->min())
                         .arg(shown->max())
                         .arg(low)
                         .arg(high);
    }
}

void Explorer::checkTimers(QStringList &found)
{
    const QList<int> intervals = rig.timerIntervals();
    const int samples = intervals.count(0);
    const int updates = intervals.count(50) + intervals.count(100);
    if (samples > 1 || updates > 1 || samples + updates != intervals.size())
        found << QStringLiteral("timers of other intervals or more than one of a kind");
    if (samples > 0 && rig.isIdle())
        found << QStringLiteral("sampling while the start button is enabled");
    if (samples == 0 && !rig.isIdle())
        found << QStringLiteral("a move is not sampled");
}

QString Explorer::brokenAtTheEnd()
{
    if (hasLostRegisters)
        return QString();
    rig.faulty.switchOffAll();
    const bool hasRows = rig.registerWidgets().size() == 4;
    rig.show();
    rig.rounds(2);
    rig.repairRamps();
    rig.pressStop();
    if (!rig.settle())
        return QStringLiteral("the start button stays disabled");
    if (!rig.chipComesToRest())
        return QStringLiteral("the axes do not come to rest");
    if (!hasRows)
        return rig.takeViolations().join(QStringLiteral("; "));
    const QPointF goal(1234, -777);
    rig.pick(goal);
    rig.pressStart();
    if (!rig.settle() || rig.chipPosition() != goal.toPoint() || rig.actual() != goal)
        return QStringLiteral("a new move does not arrive");
    return rig.takeViolations().join(QStringLiteral("; "));
}
