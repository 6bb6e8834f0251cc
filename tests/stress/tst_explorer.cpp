#include "Explorer.h"
#include "ExplorerRun.h"
#include "HeadlessPlatform.h"

#include <QTest>

namespace {

constexpr int presetEvents = 100000;
constexpr unsigned int presetSeed = 1;

int numberFrom(const char *variable, int preset)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? number : preset;
}

QString report(unsigned int seed, const ExplorerFailure &failure)
{
    return QStringLiteral("seed %1: %2").arg(seed).arg(failure.text) + textOf(failure.events);
}

/// What is wrong with as many sequences as the environment says; empty when nothing is.
QString exploreSequences(unsigned int first, int sequences)
{
    for (int i = 0; i < sequences; ++i) {
        const unsigned int seed = first + static_cast<unsigned int>(i);
        const ExplorerEvents events =
            ExplorerRun::begin(seed, explorerEvents(seed, ExplorerRun::eventsPerSequence));
        const auto failure = explore(seed, events);
        if (failure)
            return report(seed, shortest(seed, *failure));
    }
    return QString();
}

} // namespace

/// Sequences by chance, in a process of their own. EXPLORER_EVENTS sets how many events in all,
/// EXPLORER_SEED the first sequence's seed, each further one having the next. Runs of more than
/// five minutes need QTEST_FUNCTION_TIMEOUT. With EXPLORER_WORKER set the sequences run in this
/// process, to have a debugger look at them.
class ExplorerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void eventsMeanTheSameForTheSameSeed();
    void shorteningLeavesTheEventsThatMatter();
    void crashesAreShortenedToo();
    void whateverHappensTheToolStaysWhole();

private:
    static void exploreHere();
};

void ExplorerTest::eventsMeanTheSameForTheSameSeed()
{
    const auto texts = [](unsigned int seed) {
        QStringList all;
        for (const ExplorerEvent &event : explorerEvents(seed, 300))
            all << textOf(event);
        return all;
    };
    QCOMPARE(texts(5), texts(5));
    QVERIFY(texts(5) != texts(6));
}

void ExplorerTest::shorteningLeavesTheEventsThatMatter()
{
    // A tool that works breaks no rule, so a made-up one stands for a failure.
    ExplorerEvents events = explorerEvents(11, 40);
    events.insert(20, {ExplorerEvent::TraceLength, 77, 0});
    const auto fails = [](const ExplorerEvents &tried) {
        return std::any_of(tried.cbegin(), tried.cend(), [](const ExplorerEvent &event) {
            return event.kind == ExplorerEvent::TraceLength && event.a == 77;
        });
    };
    const ExplorerEvents few = shortest(events, fails);
    QCOMPARE(few.size(), 1);
    QCOMPARE(few.constFirst().a, 77);
}

void ExplorerTest::whateverHappensTheToolStaysWhole()
{
    if (ExplorerRun::isHere())
        return exploreHere();
    ExplorerRun run(QLatin1String(QTest::currentTestFunction()));
    const QString broken = run.run();
    QVERIFY2(broken.isEmpty(), qPrintable(broken));
    for (const QString &line : run.summary().split(QLatin1Char('\n'))) {
        if (line.contains(QLatin1String("ends of moves")))
            qInfo("%s", qPrintable(line.section(QStringLiteral("() "), 1)));
    }
}

void ExplorerTest::exploreHere()
{
    const int events = numberFrom("EXPLORER_EVENTS", presetEvents);
    const auto first = static_cast<unsigned int>(numberFrom("EXPLORER_SEED", int(presetSeed)));
    const QString broken =
        exploreSequences(first, qMax(1, events / ExplorerRun::eventsPerSequence));
    QVERIFY2(broken.isEmpty(), qPrintable(broken));
    const Explorer::Counts &counts = Explorer::counts();
    qInfo("%d starts, %d ends of moves, %d nested events, %d paths, %d deletions in requests",
          counts.starts, counts.movesEnded, counts.nested, counts.pathsTaken, counts.deletedInside);
    // Chance brings about each of these many times; none at all means that nothing was explored.
    if (events >= presetEvents) {
        QVERIFY(counts.starts > 1000);
        QVERIFY(counts.movesEnded > 1000);
        QVERIFY(counts.nested > 1000);
        QVERIFY(counts.pathsTaken > 100);
        QVERIFY(counts.deletedInside > 10);
    }
}

void ExplorerTest::crashesAreShortenedToo()
{
    ExplorerRun run(QStringLiteral("whateverHappensTheToolStaysWhole"));
    run.abortOn(ExplorerEvent::TraceLength);
    const QString broken = run.run();
    QVERIFY2(broken.startsWith(QLatin1String("seed ")), qPrintable(broken));
    QVERIFY2(broken.contains(QLatin1String(": crashed or hung\n")), qPrintable(broken));
    const QString sequence = broken.mid(broken.indexOf(QLatin1String("shortest sequence:\n")));
    QCOMPARE(sequence.count(QLatin1Char('\n')), 1);
    QVERIFY2(sequence.contains(QLatin1String("    trace length {")), qPrintable(broken));
}

QTEST_MAIN(ExplorerTest)
#include "tst_explorer.moc"
