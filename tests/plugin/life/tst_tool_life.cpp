#include "FlightDialogs.h"
#include "HeadlessPlatform.h"
#include "PollBench.h"

#include "HostRegistry.h"
#include "XmlRegisterWidget.h"

#include <QTest>
#include <QWheelEvent>

// A tool's end at the moments at which it does something else: its host may delete it where the
// tool hands control over, that is in requests, dialogs, clicks, picks and what it reports itself.

namespace {

/// Plays the register browser and counts what it is sent.
class CountingTool : public ToolsInterface
{
public:
    CountingTool()
        : ToolsInterface(QStringLiteral("browser"), QStringLiteral("CountingTool"),
                         ToolsType::SynchronisedDriveTool, 0, nullptr, QString(), nullptr)
    {
    }
    void importValue(const export_type_t *, QVariant, QObject *) override { ++imports; }

    int imports = 0;
};

/// Takes a signal whose class is not known here.
class Relay : public QObject
{
    Q_OBJECT

public:
    Relay(std::function<void()> receiver, QObject *parent)
        : QObject(parent)
        , action(std::move(receiver))
    {
    }

public slots:
    void pass() { action(); }

private:
    std::function<void()> action;
};

enum class Moment { BeforeTheTool, BehindTheTool };

} // namespace

Q_DECLARE_METATYPE(Moment)

class ToolLifeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void deletionDuringAMoveStopsTheRequests();
    void deletionInEveryRequestOfAStartIsSurvived_data();
    void deletionInEveryRequestOfAStartIsSurvived();
    void deletionInEveryRequestOfAMoveIsSurvived_data();
    void deletionInEveryRequestOfAMoveIsSurvived();
    void deletionBeforeTheExportExportsNothing();
    void deletionDuringTheModalDialogEndsTheDialog();
    void deletionDuringTheFileDialogIsSurvived();
    void deletionInAHandledSignalIsSurvived_data();
    void deletionInAHandledSignalIsSurvived();
    void deletionInTheDeviceTreeOperationIsSurvived_data();
    void deletionInTheDeviceTreeOperationIsSurvived();
    void deletionFromTheMenuIsSurvived();
    void oneOfTwoToolsOnAModuleGoesAlone();
    void moduleMayGoBehindItsTools();
    void deletedPrototypeIsReplacedAndItsToolsLiveOn();
};

namespace {

void prepareMove(PollBench &bench)
{
    bench.makeWide();
    bench.setVelocities(100, 100);
    bench.setTarget({300, 200});
}

/// Deletes the bench's tool at a request, the first one being 0.
void deleteAtRequest(PollBench &bench, int request)
{
    bench.link.calls.clear();
    bench.link.onRequest = [&bench, request] {
        if (bench.link.calls.size() == request + 1)
            bench.deleteTool();
    };
}

void addRequests(int count)
{
    QTest::addColumn<int>("request");

    for (int request = 0; request < count; ++request)
        QTest::addRow("request %d", request) << request;
}

} // namespace

void ToolLifeTest::deletionDuringAMoveStopsTheRequests()
{
    PollBench bench;
    prepareMove(bench);
    bench.start();
    bench.sample(10, 5);
    bench.updateTick();
    bench.takeCalls();
    bench.deleteTool();
    QCoreApplication::processEvents();
    QVERIFY(bench.takeCalls().isEmpty());
}

void ToolLifeTest::deletionInEveryRequestOfAStartIsSurvived_data()
{
    // Two reads, five writes to hold the axes and load the targets, two field writes among them,
    // each with its read-back, and two writes to let go.
    addRequests(14);
}

void ToolLifeTest::deletionInEveryRequestOfAStartIsSurvived()
{
    QFETCH(int, request);
    PollBench bench;
    prepareMove(bench);
    deleteAtRequest(bench, request);
    bench.startButton()->click();
    if (bench.tool())
        QVERIFY(bench.link.calls.size() <= request);
    else
        QCOMPARE(bench.link.calls.size(), request + 1);
}

void ToolLifeTest::deletionInEveryRequestOfAMoveIsSurvived_data()
{
    addRequests(5);
}

void ToolLifeTest::deletionInEveryRequestOfAMoveIsSurvived()
{
    QFETCH(int, request);
    PollBench bench;
    prepareMove(bench);
    bench.start();
    bench.setVelocities(0, 0);
    deleteAtRequest(bench, request);
    for (int step = 1; step < 4 && bench.tool(); ++step) {
        bench.sample(100 * step, 50 * step);
        if (bench.tool())
            bench.updateTick();
        if (bench.tool())
            bench.updateTick();
    }
    QVERIFY(!bench.tool());
}

void ToolLifeTest::deletionBeforeTheExportExportsNothing()
{
    CountingTool browser;
    HostRegistry::add(&browser, QStringLiteral("life/browser"));
    PollBench kept;
    kept.widget<QAbstractButton>("btnShowRegister")->setEnabled(true);
    PollBench bench;
    bench.widget<QAbstractButton>("btnShowRegister")->setEnabled(true);
    bench.widget<QAbstractButton>("btnShowRegister")->click();
    kept.widget<QAbstractButton>("btnShowRegister")->click();
    bench.deleteTool();
    QTRY_COMPARE(browser.imports, 1);
}

void ToolLifeTest::deletionDuringTheModalDialogEndsTheDialog()
{
    PollBench bench;
    bench.show();
    QPointer<QDialog> editor;
    QVERIFY(inEditor(bench, [&](QDialog *dialog) {
        editor = dialog;
        bench.deleteTool();
    }));
    QVERIFY(!bench.tool());
    QVERIFY(!editor);
    QVERIFY(!QApplication::activeModalWidget());
}

void ToolLifeTest::deletionDuringTheFileDialogIsSurvived()
{
    PollBench bench;
    bench.show();
    bool hasAsked = false;
    QVERIFY(inEditor(bench, [&](QDialog *editor) {
        hasAsked = inFileDialog(editor, [&](QFileDialog *) { bench.deleteTool(); });
    }));
    QVERIFY(hasAsked);
    QVERIFY(!bench.tool());
    QVERIFY(!QApplication::activeModalWidget());
}

void ToolLifeTest::deletionInAHandledSignalIsSurvived_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<Moment>("moment");

    // A slot that was connected before the tool's own is called before it.
    for (const char *signal :
         {"register written", "row changed", "start", "stop", "view", "clear", "zoom", "wheel"}) {
        QTest::addRow("%s, behind the tool", signal) << QByteArray(signal) << Moment::BehindTheTool;
    }
    // Before the tool there is room only on an object that is older than the tool.
    QTest::addRow("register written, before the tool")
        << QByteArray("register written") << Moment::BeforeTheTool;
}

namespace {

void turnTheWheel(const PollBench &bench)
{
    const HeldKeys keys(bench.tool(), Qt::ControlModifier);
    QWheelEvent turn(QPointF(200, 200), QPointF(200, 200), QPoint(), QPoint(0, 120), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(bench.tool(), &turn);
}

/// Connects `deletion` to the signal and returns what emits that.
std::function<void()> arm(PollBench &bench, const QByteArray &signal, QObject *context,
                          const std::function<void()> &deletion)
{
    const auto watched = static_cast<unsigned short>(ToolBench::address(QStringLiteral("M0_VMAX")));
    if (signal == "register written") {
        QObject::connect(bench.module(), &HostModule::registerOutputBufferHasWritten, context,
                         deletion);
        return [&bench, watched] {
            emit bench.module()->registerOutputBufferHasWritten(watched, 0, 0, 0);
        };
    }
    if (signal == "row changed") {
        XmlRegisterWidget *row = bench.registerWidget("M0_XTARGET");
        QObject::connect(row, &XmlRegisterWidget::valueChanged, context, deletion);
        return [row] { emit row->valueChanged(77); };
    }
    if (signal == "view") {
        // The class of the view does not leave the module, so this connection goes by name.
        auto *relay = new Relay(deletion, context);
        QObject::connect(bench.view(), SIGNAL(position(QPoint, QPoint)), relay, SLOT(pass()));
        QWidget *viewport = bench.view()->viewport();
        const QPoint at = bench.pixelOf({64, 64});
        return [viewport, at] { QTest::mousePress(viewport, Qt::LeftButton, {}, at); };
    }
    const QHash<QByteArray, const char *> buttons{{"start", "pbStart"},
                                                  {"stop", "pbStop"},
                                                  {"clear", "btnClearTraces"},
                                                  {"zoom", "btnZoomIn"},
                                                  {"wheel", "btnZoomIn"}};
    auto *button = bench.widget<QAbstractButton>(buttons.value(signal));
    QObject::connect(button, &QAbstractButton::clicked, context, deletion);
    if (signal == "wheel")
        return [&bench] { turnTheWheel(bench); };
    return [button] { button->click(); };
}

} // namespace

void ToolLifeTest::deletionInAHandledSignalIsSurvived()
{
    QFETCH(QByteArray, signal);
    QFETCH(Moment, moment);
    PollBench bench;
    QObject context;
    if (moment == Moment::BeforeTheTool) {
        // The first tool of a bench's module was connected before this; a second one is behind it.
        QPointer<ToolsInterface> second;
        const auto emitSignal = arm(bench, signal, &context, [&second] { delete second.data(); });
        second = toolPrototype()->clone(QStringLiteral("second"), 0, bench.module());
        second->showPlugin();
        emitSignal();
        QVERIFY(!second);
        QVERIFY(bench.tool());
        return;
    }
    bench.show();
    bench.updateTick();
    const auto emitSignal = arm(bench, signal, &context, [&bench] { bench.deleteTool(); });
    emitSignal();
    QVERIFY(!bench.tool());
    bench.takeCalls();
    QCoreApplication::processEvents();
    QVERIFY(bench.takeCalls().isEmpty());
}

void ToolLifeTest::deletionInTheDeviceTreeOperationIsSurvived_data()
{
    QTest::addColumn<QString>("button");

    QTest::newRow("register browser") << QStringLiteral("btnShowRegister");
    QTest::newRow("position mode") << QStringLiteral("btnShowPosition");
}

void ToolLifeTest::deletionInTheDeviceTreeOperationIsSurvived()
{
    QFETCH(QString, button);
    PollBench bench;
    int requests = 0;
    connect(bench.tool(), &PluginInterface::signalDeviceTreeOperation, this, [&] {
        ++requests;
        bench.deleteTool();
    });
    auto *const link = bench.tool()->findChild<QAbstractButton *>(button);
    link->setEnabled(true);
    link->click();
    QVERIFY(!bench.tool());
    QCOMPARE(requests, 1);
}

void ToolLifeTest::deletionFromTheMenuIsSurvived()
{
    PollBench bench;
    prepareMove(bench);
    QAction *const run = menuEntry(bench, "Run flight path");
    const QPointer<QAction> guard = run;
    connect(run, &QAction::triggered, this, [&bench] { bench.deleteTool(); });
    run->trigger();
    QVERIFY(!bench.tool());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!guard);
}

void ToolLifeTest::oneOfTwoToolsOnAModuleGoesAlone()
{
    PollBench bench;
    bench.show();
    QPointer<ToolsInterface> other =
        toolPrototype()->clone(QStringLiteral("other"), 1, bench.module());
    other->showPlugin();
    QMetaObject::invokeMethod(other, "on_pbStart_clicked");
    delete other.data();
    bench.takeCalls();
    emit bench.module()->registerOutputBufferHasWritten(
        static_cast<unsigned short>(ToolBench::address(QStringLiteral("M1_VMAX"))), 0, 0, 1);
    QVERIFY(!bench.takeCalls().isEmpty());
    bench.setTarget({90, 80});
    bench.updateTick();
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 90);
    QCOMPARE(bench.registerValue(QStringLiteral("M1_XTARGET")), 80);
    QCOMPARE(bench.timerIntervals(), QList<int>{100});
}

void ToolLifeTest::moduleMayGoBehindItsTools()
{
    RecordingLink link;
    QPointer<HostModule> module =
        new HostModule(QStringLiteral("module"), QStringLiteral("life/module/"), &link);
    QPointer<ToolsInterface> first = toolPrototype()->clone(QStringLiteral("1"), 0, module);
    QPointer<ToolsInterface> second = toolPrototype()->clone(QStringLiteral("2"), 1, module);
    first->showPlugin();
    second->showPlugin();
    delete first.data();
    delete second.data();
    link.calls.clear();
    delete module.data();
    QVERIFY(!module);
    QVERIFY(link.calls.isEmpty());
}

void ToolLifeTest::deletedPrototypeIsReplacedAndItsToolsLiveOn()
{
    PollBench bench;
    bench.show();
    QPointer<ToolsInterface> prototype = toolPrototype();
    delete prototype.data();
    QVERIFY(!prototype);
    bench.setTarget({90, 80});
    bench.updateTick();
    QCOMPARE(bench.registerValue(QStringLiteral("M0_XTARGET")), 90);
    ToolsInterface *const next = toolPrototype();
    QVERIFY(next);
    QCOMPARE(next->name(), QStringLiteral("undefined"));
    const std::unique_ptr<ToolsInterface> tool(
        next->clone(QStringLiteral("next"), 0, bench.module()));
    tool->showPlugin();
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(tool.get()).size(), 1);
}

QTEST_MAIN(ToolLifeTest)
#include "tst_tool_life.moc"
