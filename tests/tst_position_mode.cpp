#include "HeadlessPlatform.h"
#include "HostRegistry.h"
#include "PlotScale.h"
#include "ShippedChip.h"
#include "SimulatedModule.h"
#include "ToolBench.h"
#include "VelocityProfile.h"
#include "XmlProductIC.h"
#include "XmlValueRegister.h"

#include <QAbstractItemModel>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPolygonF>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTimerEvent>

#include <memory>

namespace {

constexpr qint64 nsPerMs = 1000000;

ToolsInterface *loadPrototype(const QString &file)
{
    QPluginLoader loader(file);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    if (!prototype)
        qCritical("%s", qPrintable(loader.errorString()));
    return prototype;
}

ToolsInterface *loadPrototype()
{
    return loadPrototype(QStringLiteral(POSITION_MODE_FILE));
}

int timerInterval(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    return timers.isEmpty() ? -1 : timers.first().interval;
}

/// "x,y x,y", with three decimals at most.
QString cornerText(const QPolygonF &corners)
{
    QStringList texts;
    for (const QPointF &corner : corners)
        texts << QStringLiteral("%1,%2")
                     .arg(qRound(corner.x() * 1000) / 1000.0)
                     .arg(qRound(corner.y() * 1000) / 1000.0);
    return texts.join(QLatin1Char(' '));
}

double areaBelow(const QPolygonF &corners)
{
    double area = 0;
    for (int i = 1; i < corners.size(); ++i)
        area += (corners[i].x() - corners[i - 1].x()) * (corners[i].y() + corners[i - 1].y()) / 2;
    return area;
}

} // namespace

Q_DECLARE_METATYPE(RampSettings)

class PositionModeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theProfileFollowsTheStages_data();
    void theProfileFollowsTheStages();
    void theProfileCoversTheWay_data();
    void theProfileCoversTheWay();
    void settingsThatAMoveNeeds_data();
    void settingsThatAMoveNeeds();
    void ticksAreRound_data();
    void ticksAreRound();

    void thePrototypeIsQuiet();
    void isFoundByItsName();
    void editorsAreMadeFromTheChipDescription();
    void anEditIsWrittenWhenItIsFinished();
    void leavingAnEditorWritesToo();
    void eachMotorHasItsOwnSettings();
    void numbersOutOfRangeCannotBeEntered();
    void aWriteWithoutAnswerIsTakenBack();

    void positionAndVelocityAreLive();
    void hidingPausesTheReads();
    void aSilentModuleIsReported();

    void goSetsTheModeAndThenTheTarget();
    void theTypedTargetCountsWithoutReturn();
    void stopBrakesAndComesBack();
    void stopWithoutAPositionHoldsBothAxes();
    void aStopThatDoesNotGoOutIsReported();

    void theProfileIsThatOfTheNextMove();
    void theProfileTakesAsLongAsTheMove_data();
    void theProfileTakesAsLongAsTheMove();
    void theProfileStaysDuringTheMove();
    void withoutAProfileThereIsAReason();
    void thePlotIsDrawn();

    void editsAreSeenInTheOtherTools();
    void writesToAnotherChipAreNotTakenOver();
    void aZeroTurnsTheDrivesLinkRed();
    void theDrivesTargetIsTakenOver();

    void aChipWithoutTheRegistersIsReported();
    void deletedRegistersStayInert();
    void theModuleMayGo();
    void worksWithoutAModule();
    void aListenerOfAWriteMayDeleteTheTool_data();
    void aListenerOfAWriteMayDeleteTheTool();

private:
    void open(unsigned char motor = 0);
    void tick() const;
    void enter(const QString &box, const QString &text, bool confirms = true) const;
    void click(const QString &button) const;
    /// Lets the axes run, with a tick at the end.
    void run(int ms);
    void runUntilStandstill();
    QSpinBox *box(const QString &name) const { return tool->findChild<QSpinBox *>(name); }
    QString label(const QString &name) const { return tool->findChild<QLabel *>(name)->text(); }
    QString status() const { return label(QStringLiteral("lbStatus")); }
    QWidget *plot() const { return tool->findChild<QWidget *>(QStringLiteral("profilePlot")); }
    QPolygonF profile() const { return plot()->property("profile").value<QPolygonF>(); }
    QString message() const { return plot()->property("message").toString(); }
    XmlValueRegister *reg(const QString &name) const
    {
        return simulated->hostModule().getIcProduct(0)->getRegisterByName(name, true);
    }
    /// From now on the module's requests are written down and answered from the link's values.
    void record();

    bench::SteppedClock clock;
    RecordingLink link;
    std::unique_ptr<bench::SimulatedModule> simulated;
    QPointer<ToolsInterface> tool;
};

void PositionModeTest::initTestCase()
{
    silenceHeadlessPlatform();
    QVERIFY(loadPrototype());
}

void PositionModeTest::init()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    link = RecordingLink();
    simulated = std::make_unique<bench::SimulatedModule>(*chip, clock, QStringLiteral("sim/"));
    simulated->link().setRequestCostNs(0);
    open();
}

void PositionModeTest::cleanup()
{
    delete tool;
    simulated.reset();
}

void PositionModeTest::open(unsigned char motor)
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("position"), motor, &simulated->hostModule());
    HostRegistry::add(tool, QStringLiteral("sim/position/%1").arg(motor));
    tool->show();
    QVERIFY(QTest::qWaitForWindowExposed(tool));
    tool->showPlugin();
}

void PositionModeTest::tick() const
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(tool);
    QCOMPARE(timers.size(), 1);
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(tool, &event);
}

void PositionModeTest::enter(const QString &name, const QString &text, bool confirms) const
{
    QTest::keyClick(box(name), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box(name), text);
    if (confirms)
        QTest::keyClick(box(name), Qt::Key_Return);
}

void PositionModeTest::click(const QString &button) const
{
    QTest::mouseClick(tool->findChild<QPushButton *>(button), Qt::LeftButton);
}

void PositionModeTest::run(int ms)
{
    clock.advance(ms * nsPerMs);
    tick();
}

void PositionModeTest::runUntilStandstill()
{
    constexpr int mostSeconds = 100;
    for (int i = 0; i < mostSeconds * 1000; ++i) {
        clock.advance(nsPerMs);
        simulated->catchUp();
        if (!simulated->chip().isMoving())
            break;
    }
    QVERIFY(!simulated->chip().isMoving());
    tick();
}

void PositionModeTest::record()
{
    for (const auto &described : simulated->chip().description().registers)
        link.values.insert(described.address, simulated->registerValue(described.name).value_or(0));
    simulated->hostModule().setLink(&link);
}

void PositionModeTest::theProfileFollowsTheStages_data()
{
    QTest::addColumn<RampSettings>("settings");
    QTest::addColumn<double>("distance");
    QTest::addColumn<QString>("corners");
    // VMAX, AMAX, DMAX, V1, A1, D1, V2, A2, D2
    const RampSettings plain{100, 100, 50, 0, 0, 0, 0, 0, 0};
    const RampSettings staged{100, 100, 50, 50, 50, 100, 0, 0, 0};
    QTest::newRow("cruises") << plain << 400.0 << "0,0 1,100 3.5,100 5.5,0";
    QTest::newRow("just reaches VMAX") << plain << 150.0 << "0,0 1,100 3,0";
    QTest::newRow("turns before VMAX") << plain << 37.5 << "0,0 0.5,50 1.5,0";
    QTest::newRow("backwards") << plain << -37.5 << "0,0 0.5,-50 1.5,0";
    QTest::newRow("no way") << plain << 0.0 << "";
    QTest::newRow("first stage") << staged << 250.0 << "0,0 1,50 1.5,100 2.5,100 3.5,50 4,0";
    QTest::newRow("within the first stage") << staged << 9.375 << "0,0 0.5,25 0.75,0";
    QTest::newRow("second stage") << RampSettings{100, 100, 50, 0, 0, 0, 50, 50, 100} << 250.0
                                  << "0,0 1,50 1.5,100 2.5,100 3.5,50 4,0";
    QTest::newRow("a stage beyond VMAX")
        << RampSettings{100, 1, 1, 0, 0, 0, 900, 100, 50} << 400.0 << "0,0 1,100 3.5,100 5.5,0";
    QTest::newRow("a second stage below the first")
        << RampSettings{100, 100, 50, 50, 50, 100, 40, 1, 1} << 250.0
        << "0,0 1,50 1.5,100 2.5,100 3.5,50 4,0";
    QTest::newRow("a setting is zero") << RampSettings{100, 0, 50, 0, 0, 0, 0, 0, 0} << 400.0 << "";
}

void PositionModeTest::theProfileFollowsTheStages()
{
    QFETCH(RampSettings, settings);
    QFETCH(double, distance);
    QTEST(cornerText(velocityProfile(settings, distance)), "corners");
}

void PositionModeTest::theProfileCoversTheWay_data()
{
    QTest::addColumn<double>("distance");
    for (const int distance : {1, 2, 50, 700, 5000, -5000, 16777215})
        QTest::newRow(QByteArray::number(distance).constData()) << double(distance);
}

void PositionModeTest::theProfileCoversTheWay()
{
    QFETCH(double, distance);
    const RampSettings settings{2000, 3000, 3000, 250, 5000, 4000, 1000, 4000, 3500};
    const QPolygonF corners = velocityProfile(settings, distance);
    QVERIFY(qAbs(areaBelow(corners) - distance) <= 1e-9 * qAbs(distance));
    QCOMPARE(corners.first(), QPointF(0, 0));
    QCOMPARE(corners.last().y(), 0.0);
    for (int i = 1; i < corners.size(); ++i) {
        QVERIFY(corners[i].x() > corners[i - 1].x());
        QVERIFY(qAbs(corners[i].y()) <= settings[VMax]);
        QVERIFY(corners[i].y() * distance >= 0);
    }
}

void PositionModeTest::settingsThatAMoveNeeds_data()
{
    QTest::addColumn<RampSettings>("settings");
    QTest::addColumn<QString>("missing");
    QTest::newRow("all set") << RampSettings{9, 9, 9, 9, 9, 9, 9, 9, 9} << "";
    QTest::newRow("without stages") << RampSettings{9, 9, 9, 0, 0, 0, 0, 0, 0} << "";
    QTest::newRow("none") << RampSettings{} << "VMAX AMAX DMAX";
    QTest::newRow("stages without rates")
        << RampSettings{9, 9, 9, 1, 0, 0, 2, 0, 0} << "A1 D1 A2 D2";
    QTest::newRow("below zero") << RampSettings{-1, 9, 9, -1, 0, 0, 0, 0, 0} << "VMAX";
}

void PositionModeTest::settingsThatAMoveNeeds()
{
    QFETCH(RampSettings, settings);
    QTEST(missingSettings(settings).join(QLatin1Char(' ')), "missing");
}

void PositionModeTest::ticksAreRound_data()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("steps");
    QTest::addColumn<QString>("ticks");
    QTest::newRow("ones") << 3.2 << 4 << "0 1 2 3";
    QTest::newRow("twos") << 10.0 << 5 << "0 2 4 6 8 10";
    QTest::newRow("fives") << 1600.0 << 4 << "0 500 1000 1500";
    QTest::newRow("fractions") << 0.05 << 3 << "0.00 0.02 0.04";
}

void PositionModeTest::ticksAreRound()
{
    QFETCH(double, span);
    QFETCH(int, steps);
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    const double step = niceStep(span, steps);
    QStringList texts;
    for (const double tick : multiples(step, 0, span))
        texts << tickText(locale, tick, step);
    QTEST(texts.join(QLatin1Char(' ')), "ticks");
}

void PositionModeTest::thePrototypeIsQuiet()
{
    ToolsInterface *const prototype = loadPrototype();
    prototype->showPlugin();
    prototype->hidePlugin();
    prototype->siblingIsVisible(QString(), true);
    prototype->importValue(&ExportTypes::RegisterList, QVariantList(), nullptr);
    QTimerEvent event(1);
    QCoreApplication::sendEvent(prototype, &event);
    QVERIFY(!prototype->layout());
    QCOMPARE(timerInterval(prototype), -1);
}

void PositionModeTest::isFoundByItsName()
{
    QVERIFY(tool->toolsName(false).startsWith(QStringLiteral("Position mode")));
    QCOMPARE(tool->pluginType(), 3);
    open(1);
    QCOMPARE(tool->motorNumber(), 1);
    QCOMPARE(tool->windowTitle(), QStringLiteral("Position mode 1"));
}

void PositionModeTest::editorsAreMadeFromTheChipDescription()
{
    for (int i = 0; i < rampSettingCount; ++i) {
        const QString name = QStringLiteral("M0_") + rampSettingName(i);
        QVERIFY2(box(name), qPrintable(name));
        QCOMPARE(box(name)->value(), simulated->registerValue(name).value_or(-1));
        QCOMPARE(box(name)->minimum(), 0);
        QCOMPARE(box(name)->maximum(), 2147483647);
        QVERIFY(box(name)->isEnabled());
    }
    QCOMPARE(box(QStringLiteral("M0_V1"))->suffix(), QStringLiteral(" units/s"));
    QCOMPARE(box(QStringLiteral("M0_A1"))->suffix(), QStringLiteral(" units/s²"));
    QCOMPARE(box(QStringLiteral("spTarget"))->suffix(), QStringLiteral(" units"));
    QCOMPARE(box(QStringLiteral("spTarget"))->minimum(), bench::minimumPosition);
    QCOMPARE(box(QStringLiteral("spTarget"))->maximum(), bench::maximumPosition);
}

void PositionModeTest::anEditIsWrittenWhenItIsFinished()
{
    record();
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("1234"), false);
    QCOMPARE(link.takeCalls(), QStringList());
    QTest::keyClick(box(QStringLiteral("M0_VMAX")), Qt::Key_Return);
    QCOMPARE(link.takeCalls(), QStringList{QStringLiteral("write 0x13 m0 1234")});
}

void PositionModeTest::leavingAnEditorWritesToo()
{
    tool->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(tool));
    box(QStringLiteral("M0_D2"))->setFocus();
    enter(QStringLiteral("M0_D2"), QStringLiteral("77"), false);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_D2")).value_or(0), 3500);
    QTest::keyClick(box(QStringLiteral("M0_D2")), Qt::Key_Tab);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_D2")).value_or(0), 77);
}

void PositionModeTest::eachMotorHasItsOwnSettings()
{
    open(1);
    QVERIFY(!box(QStringLiteral("M0_VMAX")));
    record();
    enter(QStringLiteral("M1_VMAX"), QStringLiteral("1234"));
    QCOMPARE(link.takeCalls(), QStringList{QStringLiteral("write 0x23 m1 1234")});
}

void PositionModeTest::numbersOutOfRangeCannotBeEntered()
{
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("-5"));
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_VMAX")).value_or(-1), 5);
    enter(QStringLiteral("spTarget"), QStringLiteral("99999999"));
    QVERIFY(box(QStringLiteral("spTarget"))->value() <= bench::maximumPosition);
}

void PositionModeTest::aWriteWithoutAnswerIsTakenBack()
{
    record();
    link.failWrites = true;
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("5"));
    QVERIFY2(status().contains(QStringLiteral("M0_VMAX: no answer")), qPrintable(status()));
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 2000);
}

void PositionModeTest::positionAndVelocityAreLive()
{
    QCOMPARE(timerInterval(tool), 100);
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("0 units"));
    record();
    link.values.insert(0x10, -123);
    link.values.insert(0x11, 456);
    tick();
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("-123 units"));
    QCOMPARE(label(QStringLiteral("lbVelocity")), QStringLiteral("456 units/s"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("read 0x11 m0")}));
}

void PositionModeTest::hidingPausesTheReads()
{
    tool->hidePlugin();
    QCOMPARE(timerInterval(tool), -1);
    record();
    // What was written from outside the host meanwhile is read when the tool comes back.
    link.values.insert(0x13, 4);
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), 100);
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 4);
}

void PositionModeTest::aSilentModuleIsReported()
{
    record();
    link.values.insert(0x10, 17);
    tick();
    link.failReads = true;
    link.takeCalls();
    tick();
    QCOMPARE(link.takeCalls().size(), 1);
    QCOMPARE(status(), QStringLiteral("The module gives no answer."));
    auto *const position = tool->findChild<QLabel *>(QStringLiteral("lbPosition"));
    QCOMPARE(position->text(), QStringLiteral("17 units"));
    QCOMPARE(position->foregroundRole(), QPalette::PlaceholderText);
    link.failReads = false;
    tick();
    QCOMPARE(status(), QString());
    QCOMPARE(position->foregroundRole(), QPalette::WindowText);
}

void PositionModeTest::goSetsTheModeAndThenTheTarget()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    record();
    click(QStringLiteral("pbGo"));
    QCOMPARE(link.takeCalls(), QStringList({QStringLiteral("write 0x01 m0 0"),
                                            QStringLiteral("write 0x12 m0 5000")}));
    link.failWrites = true;
    click(QStringLiteral("pbGo"));
    QCOMPARE(link.takeCalls().size(), 1);
    QVERIFY2(status().contains(QStringLiteral("not started")), qPrintable(status()));
}

void PositionModeTest::theTypedTargetCountsWithoutReturn()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("-800"), false);
    // A shortcut presses the button without taking the focus from the box.
    QTest::keyClick(tool->findChild<QPushButton *>(QStringLiteral("pbGo")), Qt::Key_Space);
    runUntilStandstill();
    QCOMPARE(simulated->chip().position(0), -800);
    QCOMPARE(simulated->chip().position(1), 0);
    QCOMPARE(label(QStringLiteral("lbPosition")), QStringLiteral("-800 units"));
}

void PositionModeTest::stopBrakesAndComesBack()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    click(QStringLiteral("pbGo"));
    run(1000);
    const int stoppedAt = simulated->chip().position(0);
    QVERIFY(stoppedAt > 500 && stoppedAt < 4000);
    click(QStringLiteral("pbStop"));
    QCOMPARE(simulated->registerValue(QStringLiteral("RAMPMODE")).value_or(-1), 0);
    QCOMPARE(simulated->registerValue(QStringLiteral("M0_XTARGET")).value_or(-1), stoppedAt);
    run(300);
    QVERIFY(simulated->chip().position(0) > stoppedAt);
    runUntilStandstill();
    QCOMPARE(simulated->chip().position(0), stoppedAt);
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), 5000);
    QVERIFY(!profile().isEmpty());
}

void PositionModeTest::stopWithoutAPositionHoldsBothAxes()
{
    record();
    link.failReads = true;
    click(QStringLiteral("pbStop"));
    QCOMPARE(link.takeCalls(),
             QStringList({QStringLiteral("read 0x10 m0"), QStringLiteral("write 0x01 m0 1")}));
    QVERIFY2(status().contains(QStringLiteral("both axes are held")), qPrintable(status()));
}

void PositionModeTest::aStopThatDoesNotGoOutIsReported()
{
    record();
    link.failWrites = true;
    click(QStringLiteral("pbStop"));
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
    link.failReads = true;
    click(QStringLiteral("pbStop"));
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
}

void PositionModeTest::theProfileIsThatOfTheNextMove()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    QVERIFY(qAbs(areaBelow(profile()) - 5000) < 1e-6);
    QCOMPARE(plot()->property("markNames").toStringList().join(QLatin1Char(' ')),
             QStringLiteral("VMAX V2 V1"));
    const double before = profile().last().x();
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("1000"));
    QVERIFY(profile().last().x() > before);
    enter(QStringLiteral("M0_V2"), QStringLiteral("0"));
    QCOMPARE(plot()->property("markNames").toStringList().join(QLatin1Char(' ')),
             QStringLiteral("VMAX V1"));
    click(QStringLiteral("pbGo"));
    runUntilStandstill();
    enter(QStringLiteral("spTarget"), QStringLiteral("4000"));
    QVERIFY(qAbs(areaBelow(profile()) + 1000) < 1e-6);
}

void PositionModeTest::theProfileTakesAsLongAsTheMove_data()
{
    QTest::addColumn<int>("distance");
    for (const int distance : {20, 400, 1500, 5000, -5000})
        QTest::newRow(QByteArray::number(distance).constData()) << distance;
}

void PositionModeTest::theProfileTakesAsLongAsTheMove()
{
    QFETCH(int, distance);
    enter(QStringLiteral("spTarget"), QString::number(distance));
    const double expectedMs = profile().last().x() * 1000;
    const qint64 start = clock.now();
    click(QStringLiteral("pbGo"));
    runUntilStandstill();
    const double tookMs = double(clock.now() - start) / double(nsPerMs);
    QVERIFY2(qAbs(tookMs - expectedMs) <= 2, qPrintable(QString::number(tookMs)));
}

void PositionModeTest::theProfileStaysDuringTheMove()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    const QPolygonF planned = profile();
    click(QStringLiteral("pbGo"));
    run(800);
    QVERIFY(simulated->chip().position(0) > 100);
    QCOMPARE(profile(), planned);
    runUntilStandstill();
    QVERIFY(profile().isEmpty());
    QCOMPARE(message(), QStringLiteral("The axis is at its target."));
}

void PositionModeTest::withoutAProfileThereIsAReason()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    QCOMPARE(message(), QString());
    enter(QStringLiteral("M0_A1"), QStringLiteral("0"));
    QVERIFY(profile().isEmpty());
    QVERIFY2(message().endsWith(QStringLiteral(": A1.")), qPrintable(message()));
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("0"));
    QVERIFY2(message().endsWith(QStringLiteral(": VMAX, A1.")), qPrintable(message()));
    // Without the stage its rates are not needed.
    enter(QStringLiteral("M0_V1"), QStringLiteral("0"));
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("10"));
    QCOMPARE(message(), QString());
    QVERIFY(!profile().isEmpty());
}

void PositionModeTest::thePlotIsDrawn()
{
    const auto colours = [this](const QColor &colour) {
        const QImage image = plot()->grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == colour ? 1 : 0;
        }
        return count;
    };
    const QColor line = plot()->palette().color(QPalette::Highlight);
    const QColor text = plot()->palette().color(QPalette::Text);
    QCOMPARE(colours(line), 0);
    QVERIFY(colours(text) > 50);
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    QVERIFY(colours(line) > 50);
    QVERIFY(colours(text) > 50);
    enter(QStringLiteral("spTarget"), QStringLiteral("-5000"));
    QVERIFY(colours(line) > 50);
}

void PositionModeTest::editsAreSeenInTheOtherTools()
{
    const std::unique_ptr<ToolsInterface> browser(
        loadPrototype(QStringLiteral(REGISTER_BROWSER_FILE))
            ->clone(QStringLiteral("browser"), 0, &simulated->hostModule()));
    const std::unique_ptr<ToolsInterface> twin(
        loadPrototype()->clone(QStringLiteral("twin"), 0, &simulated->hostModule()));
    const QAbstractItemModel *const registers = browser->findChild<QTableView *>()->model();
    const auto shown = [registers](const QString &name) {
        constexpr int nameColumn = 1;
        constexpr int decimalColumn = 4;
        const QModelIndex found =
            registers->match(registers->index(0, nameColumn), Qt::DisplayRole, name, 1).value(0);
        return found.siblingAtColumn(decimalColumn).data().toString();
    };
    simulated->hostModule().setLink(&link);
    enter(QStringLiteral("M0_AMAX"), QStringLiteral("4321"));
    QCOMPARE(shown(QStringLiteral("M0_AMAX")), QStringLiteral("4321"));
    QCOMPARE(twin->findChild<QSpinBox *>(QStringLiteral("M0_AMAX"))->value(), 4321);
    QVERIFY(simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M0_D1")), 1, 55));
    QCOMPARE(box(QStringLiteral("M0_D1"))->value(), 55);
    QCOMPARE(link.takeCalls().filter(QStringLiteral("read ")), QStringList());
}

void PositionModeTest::writesToAnotherChipAreNotTakenOver()
{
    HostModule &module = simulated->hostModule();
    module.setProduct(2, bench::buildProduct(*readShippedChip()));
    for (const char *name : {"M0_VMAX", "M0_XTARGET"})
        QVERIFY(module.writeChannelRegister(
            module.getIcProduct(2)->getRegisterByName(QLatin1String(name), true), 2, 99));
    QCOMPARE(box(QStringLiteral("M0_VMAX"))->value(), 2000);
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), 0);
}

void PositionModeTest::aZeroTurnsTheDrivesLinkRed()
{
    const std::unique_ptr<ToolsInterface> drive(
        toolPrototype()->clone(QStringLiteral("drive"), 0, &simulated->hostModule()));
    HostRegistry::add(drive.get(), QStringLiteral("sim/drive/0"));
    drive->show();
    drive->showPlugin();
    auto *const button = drive->findChild<QWidget *>(QStringLiteral("btnShowPosition"));
    QVERIFY(button && button->isEnabled());
    QCOMPARE(button->styleSheet(), QString());
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("0"));
    QVERIFY(button->styleSheet().contains(QStringLiteral("red")));
    QCOMPARE(button->toolTip(), QStringLiteral("Zero settings:\n\nM0_VMAX"));
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("2000"));
    QCOMPARE(button->styleSheet(), QString());
    QCOMPARE(button->toolTip(), QString());
}

void PositionModeTest::theDrivesTargetIsTakenOver()
{
    QVERIFY(
        simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M0_XTARGET")), 1, -64));
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), -64);
    QVERIFY(qAbs(areaBelow(profile()) + 64) < 1e-6);
    QVERIFY(simulated->hostModule().writeChannelRegister(reg(QStringLiteral("M1_XTARGET")), 0, 32));
    QCOMPARE(box(QStringLiteral("spTarget"))->value(), -64);
}

void PositionModeTest::aChipWithoutTheRegistersIsReported()
{
    delete tool;
    bench::ChipDescription reduced = *readShippedChip();
    const auto isLeftOut = [](const bench::RegisterDescription &described) {
        return described.name == QLatin1String("M0_D2") ||
               described.name == QLatin1String("RAMPMODE");
    };
    reduced.registers.erase(
        std::remove_if(reduced.registers.begin(), reduced.registers.end(), isLeftOut),
        reduced.registers.end());
    simulated = std::make_unique<bench::SimulatedModule>(reduced, clock, QStringLiteral("sim/"));
    open();
    QVERIFY2(message().contains(QStringLiteral("the chip has no D2")), qPrintable(message()));
    QVERIFY(!tool->findChild<QPushButton *>(QStringLiteral("pbGo"))->isEnabled());
    QVERIFY(!tool->findChild<QPushButton *>(QStringLiteral("pbStop"))->isEnabled());
}

void PositionModeTest::deletedRegistersStayInert()
{
    for (const char *name : {"M0_VMAX", "M0_XACTUAL", "M0_XTARGET", "RAMPMODE"})
        delete reg(QLatin1String(name));
    record();
    tick();
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    QCOMPARE(link.takeCalls(), QStringList());
    QVERIFY2(status().contains(QStringLiteral("not stopped")), qPrintable(status()));
    tool->grab();
    tool->hidePlugin();
    tool->showPlugin();
    QVERIFY2(message().contains(QStringLiteral("the chip has no VMAX")), qPrintable(message()));
}

void PositionModeTest::theModuleMayGo()
{
    enter(QStringLiteral("spTarget"), QStringLiteral("5000"));
    simulated.reset();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(profile().isEmpty());
    enter(QStringLiteral("M0_VMAX"), QStringLiteral("7"));
    enter(QStringLiteral("spTarget"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    tool->hidePlugin();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    tool->grab();
}

void PositionModeTest::worksWithoutAModule()
{
    delete tool;
    tool = loadPrototype()->clone(QStringLiteral("position"), 0, nullptr);
    tool->show();
    tool->showPlugin();
    QCOMPARE(timerInterval(tool), -1);
    QVERIFY(message().startsWith(QStringLiteral("No profile")));
    enter(QStringLiteral("spTarget"), QStringLiteral("7"));
    click(QStringLiteral("pbGo"));
    click(QStringLiteral("pbStop"));
    tool->grab();
    tool->hidePlugin();
}

void PositionModeTest::aListenerOfAWriteMayDeleteTheTool_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("edit") << "M0_VMAX";
    QTest::newRow("go") << "pbGo";
    QTest::newRow("stop") << "pbStop";
}

void PositionModeTest::aListenerOfAWriteMayDeleteTheTool()
{
    QFETCH(QString, action);
    record();
    connect(&simulated->hostModule(), &QVXLModuleInterface::registerOutputBufferHasWritten, this,
            [this] { delete tool; });
    if (action.startsWith(QStringLiteral("pb")))
        click(action);
    else
        enter(action, QStringLiteral("7"));
    QVERIFY(!tool);
    QCOMPARE(link.takeCalls().filter(QStringLiteral("write ")).size(), 1);
}

QTEST_MAIN(PositionModeTest)
#include "tst_position_mode.moc"
