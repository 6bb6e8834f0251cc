#include "DriveScene.h"

#include "ShippedChip.h"
#include "ToolRig.h"

#include <QAbstractButton>
#include <QSpinBox>
#include <QTest>
#include <QTimerEvent>

namespace {

constexpr int sampleIntervalMs = 0;
constexpr int movingIntervalMs = 50;
constexpr int idleIntervalMs = 100;

workbench::ChipDescription chipDescription()
{
    const std::optional<workbench::ChipDescription> description = readShippedChip();
    if (!description)
        qFatal("The chip description is missing beside the program.");
    return *description;
}

QString nextKey()
{
    static int number = 0;
    return QStringLiteral("module-%1/").arg(++number);
}

ToolsInterface *makeTool(QVXLModuleInterface *module)
{
    ToolsInterface *prototype = toolPrototype();
    if (!prototype)
        qFatal("The tool's module cannot be loaded.");
    return prototype->clone(QStringLiteral("benchmark"), 0, module);
}

} // namespace

DriveScene::DriveScene(int areaReach, int traceCapacity)
    : simulated(chipDescription(), steady, nextKey())
    , reach(areaReach)
{
    simulated.hostModule().setLink(&quiet);
    working.reset(makeTool(&simulated.hostModule()));
    chartView = working->findChild<QtCharts::QChartView *>();
    setLimit("spTraces", traceCapacity);
    showWholeArea();
    placeOnScreen();
    paintWatch = std::make_unique<harness::PaintWatch>(chartView->viewport());
    wanderingPath = std::make_unique<WanderingPath>(range(), plotPixels());
}

DriveScene::~DriveScene() = default;

void DriveScene::placeOnScreen()
{
    working->resize(900, 600);
    working->show();
    if (!QTest::qWaitForWindowExposed(working.get()))
        qFatal("The tool does not come on screen.");
    // The panel does not get as narrow as that, so it is the view that is held to the size.
    for (int pass = 0; pass < 2; ++pass) {
        chartView->setFixedSize(chartView->size() + missingPixels());
        QCoreApplication::sendPostedEvents();
    }
    const QSize off = missingPixels();
    if (qAbs(off.width()) > 1 || qAbs(off.height()) > 1)
        qFatal("The plot area is off by %d, %d pixels.", off.width(), off.height());
    working->showPlugin();
}

QSize DriveScene::missingPixels() const
{
    return plotPixels() - chart()->plotArea().size().toSize();
}

QtCharts::QLineSeries *DriveScene::trace() const
{
    return qobject_cast<QtCharts::QLineSeries *>(chart()->series().constLast());
}

QAbstractButton *DriveScene::button(const char *name) const
{
    return working->findChild<QAbstractButton *>(QLatin1String(name));
}

QRectF DriveScene::range() const
{
    const auto value = [this](const char *name) {
        return working->findChild<QSpinBox *>(QLatin1String(name))->value();
    };
    return {QPointF(value("spM0min"), value("spM1min")),
            QPointF(value("spM0max"), value("spM1max"))};
}

void DriveScene::setLimit(const char *name, int value) const
{
    working->findChild<QSpinBox *>(QLatin1String(name))->setValue(value);
}

void DriveScene::showWholeArea()
{
    // The first of each pair may be held back by the other limit.
    for (int pass = 0; pass < 2; ++pass) {
        setLimit("spM0min", -reach);
        setLimit("spM0max", reach);
        setLimit("spM1min", -reach);
        setLimit("spM1max", reach);
    }
}

void DriveScene::pressStart() const
{
    button("pbStart")->click();
    if (!isMoving())
        qFatal("The move does not start.");
}

bool DriveScene::isMoving() const
{
    return !button("pbStart")->isEnabled();
}

int DriveScene::timerId(int intervalMs) const
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(working.get());
    for (const auto &timer : timers) {
        if (timer.interval == intervalMs)
            return timer.timerId;
    }
    return 0;
}

void DriveScene::samplePath(int count)
{
    sample(path().next(count));
}

void DriveScene::sample(const QVector<QPointF> &points)
{
    QTimerEvent event(timerId(sampleIntervalMs));
    for (const QPointF &point : points) {
        quiet.position = point.toPoint();
        QCoreApplication::sendEvent(working.get(), &event);
    }
}

void DriveScene::sampleSame(int count)
{
    QTimerEvent event(timerId(sampleIntervalMs));
    for (int i = 0; i < count; ++i)
        QCoreApplication::sendEvent(working.get(), &event);
}

void DriveScene::updateTick() const
{
    const int moving = timerId(movingIntervalMs);
    QTimerEvent event(moving ? moving : timerId(idleIntervalMs));
    QCoreApplication::sendEvent(working.get(), &event);
}

void DriveScene::refill(int count)
{
    button("btnClearTraces")->click();
    showWholeArea();
    harness::paintPosted(); // Lets the layout settle: the trace is thinned by pixels.
    path() = WanderingPath(range(), plotPixels());
    samplePath(count);
    updateTick();
    if (trace()->count() < count * 99 / 100)
        qFatal("The trace holds %d of %d points.", trace()->count(), count);
    harness::paintPosted();
}

harness::Cost DriveScene::drawTick()
{
    harness::Cost cost;
    cost.model = harness::millisecondsOf([this] { updateTick(); });
    cost.paint = paints().paint();
    return cost;
}

void DriveScene::endMove()
{
    quiet.registerValue = 0;
    // The first tick draws what is left, the second finds nothing new.
    updateTick();
    updateTick();
    if (isMoving())
        qFatal("The move on the quiet link does not end.");
    quiet.registerValue = QuietLink().registerValue;
}
