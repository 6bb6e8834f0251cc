#include "FlightDialogs.h"
#include "HeadlessPlatform.h"
#include "PollRig.h"

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

void prepareMove(PollRig &rig)
{
    rig.makeWide();
    rig.setVelocities(100, 100);
    rig.setTarget({300, 200});
}

/// Deletes the rig's tool at a request, the first one being 0.
void deleteAtRequest(PollRig &rig, int request)
{
    rig.link.calls.clear();
    rig.link.onRequest = [&rig, request] {
        if (rig.link.calls.size() == request + 1)
            rig.deleteTool();
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
    PollRig rig;
    prepareMove(rig);
    rig.start();
    rig.sample(10, 5);
    rig.updateTick();
    rig.takeCalls();
    rig.deleteTool();
    QCoreApplication::processEvents();
    QVERIFY(rig.takeCalls().isEmpty());
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
    PollRig rig;
    prepareMove(rig);
    deleteAtRequest(rig, request);
    rig.startButton()->click();
    if (rig.tool())
        QVERIFY(rig.link.calls.size() <= request);
    else
        QCOMPARE(rig.link.calls.size(), request + 1);
}

void ToolLifeTest::deletionInEveryRequestOfAMoveIsSurvived_data()
{
    addRequests(5);
}

void ToolLifeTest::deletionInEveryRequestOfAMoveIsSurvived()
{
    QFETCH(int, request);
    PollRig rig;
    prepareMove(rig);
    rig.start();
    rig.setVelocities(0, 0);
    deleteAtRequest(rig, request);
    for (int step = 1; step < 4 && rig.tool(); ++step) {
        rig.sample(100 * step, 50 * step);
        if (rig.tool())
            rig.updateTick();
        if (rig.tool())
            rig.updateTick();
    }
    QVERIFY(!rig.tool());
}

void ToolLifeTest::deletionBeforeTheExportExportsNothing()
{
    CountingTool browser;
    HostRegistry::add(&browser, QStringLiteral("life/browser"));
    PollRig kept;
    kept.widget<QAbstractButton>("btnShowRegister")->setEnabled(true);
    PollRig rig;
    rig.widget<QAbstractButton>("btnShowRegister")->setEnabled(true);
    rig.widget<QAbstractButton>("btnShowRegister")->click();
    kept.widget<QAbstractButton>("btnShowRegister")->click();
    rig.deleteTool();
    QTRY_COMPARE(browser.imports, 1);
}

void ToolLifeTest::deletionDuringTheModalDialogEndsTheDialog()
{
    PollRig rig;
    rig.show();
    QPointer<QDialog> editor;
    QVERIFY(inEditor(rig, [&](QDialog *dialog) {
        editor = dialog;
        rig.deleteTool();
    }));
    QVERIFY(!rig.tool());
    QVERIFY(!editor);
    QVERIFY(!QApplication::activeModalWidget());
}

void ToolLifeTest::deletionDuringTheFileDialogIsSurvived()
{
    PollRig rig;
    rig.show();
    bool hasAsked = false;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        hasAsked = inFileDialog(editor, [&](QFileDialog *) { rig.deleteTool(); });
    }));
    QVERIFY(hasAsked);
    QVERIFY(!rig.tool());
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

void turnTheWheel(const PollRig &rig)
{
    const HeldKeys keys(rig.tool(), Qt::ControlModifier);
    QWheelEvent turn(QPointF(200, 200), QPointF(200, 200), QPoint(), QPoint(0, 120), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(rig.tool(), &turn);
}

/// Connects `deletion` to the signal and returns what emits that.
std::function<void()> arm(PollRig &rig, const QByteArray &signal, QObject *context,
                          const std::function<void()> &deletion)
{
    const auto watched = static_cast<unsigned short>(ToolRig::address(QStringLiteral("M0_VMAX")));
    if (signal == "register written") {
        QObject::connect(rig.module(), &HostModule::registerOutputBufferHasWritten, context,
                         deletion);
        return [&rig, watched] {
            emit rig.module()->registerOutputBufferHasWritten(watched, 0, 0, 0);
        };
    }
    if (signal == "row changed") {
        XmlRegisterWidget *row = rig.registerWidget("M0_XTARGET");
        QObject::connect(row, &XmlRegisterWidget::valueChanged, context, deletion);
        return [row] { emit row->valueChanged(77); };
    }
    if (signal == "view") {
        // The class of the view does not leave the module, so this connection goes by name.
        auto *relay = new Relay(deletion, context);
        QObject::connect(rig.view(), SIGNAL(position(QPoint, QPoint)), relay, SLOT(pass()));
        QWidget *viewport = rig.view()->viewport();
        const QPoint at = rig.pixelOf({64, 64});
        return [viewport, at] { QTest::mousePress(viewport, Qt::LeftButton, {}, at); };
    }
    const QHash<QByteArray, const char *> buttons{{"start", "pbStart"},
                                                  {"stop", "pbStop"},
                                                  {"clear", "btnClearTraces"},
                                                  {"zoom", "btnZoomIn"},
                                                  {"wheel", "btnZoomIn"}};
    auto *button = rig.widget<QAbstractButton>(buttons.value(signal));
    QObject::connect(button, &QAbstractButton::clicked, context, deletion);
    if (signal == "wheel")
        return [&rig] { turnTheWheel(rig); };
    return [button] { button->click(); };
}

} // namespace

void ToolLifeTest::deletionInAHandledSignalIsSurvived()
{
    QFETCH(QByteArray, signal);
    QFETCH(Moment, moment);
    PollRig rig;
    QObject context;
    if (moment == Moment::BeforeTheTool) {
        // The first tool of a rig's module was connected before this; a second one is behind it.
        QPointer<ToolsInterface> second;
        const auto emitSignal = arm(rig, signal, &context, [&second] { delete second.data(); });
        second = toolPrototype()->clone(QStringLiteral("second"), 0, rig.module());
        second->showPlugin();
        emitSignal();
        QVERIFY(!second);
        QVERIFY(rig.tool());
        return;
    }
    rig.show();
    rig.updateTick();
    const auto emitSignal = arm(rig, signal, &context, [&rig] { rig.deleteTool(); });
    emitSignal();
    QVERIFY(!rig.tool());
    rig.takeCalls();
    QCoreApplication::processEvents();
    QVERIFY(rig.takeCalls().isEmpty());
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
    PollRig rig;
    int requests = 0;
    connect(rig.tool(), &PluginInterface::signalDeviceTreeOperation, this, [&] {
        ++requests;
        rig.deleteTool();
    });
    auto *const link = rig.tool()->findChild<QAbstractButton *>(button);
    link->setEnabled(true);
    link->click();
    QVERIFY(!rig.tool());
    QCOMPARE(requests, 1);
}

void ToolLifeTest::deletionFromTheMenuIsSurvived()
{
    PollRig rig;
    prepareMove(rig);
    QAction *const run = menuEntry(rig, "Run flight path");
    const QPointer<QAction> guard = run;
    connect(run, &QAction::triggered, this, [&rig] { rig.deleteTool(); });
    run->trigger();
    QVERIFY(!rig.tool());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!guard);
}

void ToolLifeTest::oneOfTwoToolsOnAModuleGoesAlone()
{
    PollRig rig;
    rig.show();
    QPointer<ToolsInterface> other =
        toolPrototype()->clone(QStringLiteral("other"), 1, rig.module());
    other->showPlugin();
    QMetaObject::invokeMethod(other, "on_pbStart_clicked");
    delete other.data();
    rig.takeCalls();
    emit rig.module()->registerOutputBufferHasWritten(
        static_cast<unsigned short>(ToolRig::address(QStringLiteral("M1_VMAX"))), 0, 0, 1);
    QVERIFY(!rig.takeCalls().isEmpty());
    rig.setTarget({90, 80});
    rig.updateTick();
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 90);
    QCOMPARE(rig.registerValue(QStringLiteral("M1_XTARGET")), 80);
    QCOMPARE(rig.timerIntervals(), QList<int>{100});
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
    PollRig rig;
    rig.show();
    QPointer<ToolsInterface> prototype = toolPrototype();
    delete prototype.data();
    QVERIFY(!prototype);
    rig.setTarget({90, 80});
    rig.updateTick();
    QCOMPARE(rig.registerValue(QStringLiteral("M0_XTARGET")), 90);
    ToolsInterface *const next = toolPrototype();
    QVERIFY(next);
    QCOMPARE(next->name(), QStringLiteral("undefined"));
    const std::unique_ptr<ToolsInterface> tool(
        next->clone(QStringLiteral("next"), 0, rig.module()));
    tool->showPlugin();
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(tool.get()).size(), 1);
}

QTEST_MAIN(ToolLifeTest)
#include "tst_tool_life.moc"
