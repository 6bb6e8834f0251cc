#include "HeadlessPlatform.h"
#include "PollBench.h"

#include "XmlRegisterWidget.h"

#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>

// A host that follows what the panel shows may delete the tool whenever something changes there,
// also when that is no more than a step of what a person has asked for.

namespace {

using Act = std::function<void(PollBench &)>;

const QHash<QByteArray, Act> &acts()
{
    static const QHash<QByteArray, Act> all{
        {"wheel",
         [](PollBench &bench) {
             const HeldKeys keys(bench.tool(), Qt::ControlModifier);
             QWheelEvent turn(QPointF(200, 200), QPointF(200, 200), QPoint(), QPoint(0, 120),
                              Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
             QCoreApplication::sendEvent(bench.tool(), &turn);
         }},
        {"horizontal range", [](PollBench &bench) { bench.axisX()->setRange(-1000, 1000); }},
        {"vertical range", [](PollBench &bench) { bench.axisY()->setRange(-1000, 1000); }},
        {"lower limit", [](PollBench &bench) { bench.widget<QSpinBox>("spM0min")->setValue(0); }},
        {"upper limit", [](PollBench &bench) { bench.widget<QSpinBox>("spM1max")->setValue(700); }},
        {"pick",
         [](PollBench &bench) {
             bench.setTarget({5, 6});
         }},
        {"push",
         [](PollBench &bench) {
             bench.setTarget({5, 6}, {1, 1});
         }},
        {"stop", [](PollBench &bench) { bench.call("on_pbStop_clicked"); }},
        {"row", [](PollBench &bench) { emit bench.registerWidget("M0_XTARGET")->valueChanged(9); }},
        {"run path", [](PollBench &bench) { bench.runAction()->trigger(); }},
        {"clear", [](PollBench &bench) { bench.widget<QPushButton>("btnClearTraces")->click(); }},
        {"draw", [](PollBench &bench) { bench.updateTick(); }},
        {"step of the path",
         [](PollBench &bench) {
             bench.startButton()->setProperty("RunFp", 0);
             bench.updateTick();
             if (bench.tool())
                 bench.updateTick();
         }},
    };
    return all;
}

/// Deletes the tool the next time that the signal is emitted.
void arm(PollBench &bench, const QByteArray &signal, QObject *context)
{
    const auto deletion = [&bench] { bench.deleteTool(); };
    if (signal.startsWith("sp"))
        QObject::connect(bench.widget<QSpinBox>(signal.constData()),
                         QOverload<int>::of(&QSpinBox::valueChanged), context, deletion);
    else if (signal.startsWith("btn"))
        QObject::connect(bench.widget<QPushButton>(signal.constData()), &QPushButton::clicked,
                         context, deletion);
    else if (signal.startsWith("axis"))
        QObject::connect(signal == "axisX" ? bench.axisX() : bench.axisY(),
                         &QtCharts::QValueAxis::rangeChanged, context, deletion);
    else if (signal == "trace")
        QObject::connect(bench.trace(), &QtCharts::QXYSeries::pointsReplaced, context, deletion);
    else
        QObject::connect(signal == "target" ? bench.target() : bench.actual(),
                         &QtCharts::QXYSeries::pointReplaced, context, deletion);
}

} // namespace

class ToolDeletionTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void deletionInTheMiddleOfAChangeIsSurvived_data();
    void deletionInTheMiddleOfAChangeIsSurvived();
};

void ToolDeletionTest::deletionInTheMiddleOfAChangeIsSurvived_data()
{
    QTest::addColumn<QByteArray>("act");
    QTest::addColumn<QByteArray>("signal");

    const auto rows = [](const char *act, const QList<QByteArray> &signalNames) {
        for (const QByteArray &name : signalNames)
            QTest::addRow("%s, %s", act, name.constData()) << QByteArray(act) << name;
    };
    // A chart that zooms does not survive its own deletion, so there only the click can delete.
    rows("wheel", {"btnZoomIn"});
    rows("horizontal range", {"spM0min", "spM0max", "axisX", "trace"});
    rows("vertical range", {"spM1min", "spM1max", "axisY", "trace"});
    rows("lower limit", {"spM0min", "axisX", "trace"});
    rows("upper limit", {"spM1max", "axisY", "trace"});
    rows("pick", {"target"});
    rows("push", {"target", "spM0max", "spM1min", "axisX", "axisY"});
    rows("stop", {"target"});
    rows("row", {"target"});
    rows("run path", {"target"});
    rows("clear", {"trace"});
    rows("draw", {"actual", "spM0max", "spM1min", "axisX", "axisY", "trace"});
    rows("step of the path", {"target"});
}

void ToolDeletionTest::deletionInTheMiddleOfAChangeIsSurvived()
{
    QFETCH(QByteArray, act);
    QFETCH(QByteArray, signal);
    PollBench bench;
    bench.setLimits(-4096, 4096, -4096, 4096);
    bench.show();
    bench.updateTick();
    bench.setTarget({300, 200});
    bench.start();
    bench.sample(100, 100);
    bench.sample(200, 150);
    bench.updateTick();
    if (act == "draw")
        bench.sample(9000, -9000);
    QObject context;
    arm(bench, signal, &context);
    acts().value(act)(bench);
    QVERIFY(!bench.tool());
    bench.takeCalls();
    QCoreApplication::processEvents();
    QVERIFY(bench.takeCalls().isEmpty());
}

QTEST_MAIN(ToolDeletionTest)
#include "tst_tool_deletion.moc"
