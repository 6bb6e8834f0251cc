#include "Explorer.h"
#include "HeadlessPlatform.h"

#include <QTest>

namespace {

constexpr int eventsPerSequence = 250;
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
    QString text = QStringLiteral("seed %1: %2").arg(seed).arg(failure.text);
    for (const ExplorerEvent &event : failure.events)
        text += QStringLiteral("\n    ") + textOf(event);
    return text;
}

} // namespace

/// Sequences by chance. EXPLORER_EVENTS sets how many events in all, EXPLORER_SEED the first
/// sequence's seed, each further one having the next; EXPLORER_TRACE tells each seed beforehand,
/// to find the one that crashes. Runs of more than five minutes need QTEST_FUNCTION_TIMEOUT.
class TestExplorer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void eventsMeanTheSameForTheSameSeed();
    void shorteningLeavesTheEventsThatMatter();
    void whateverHappensTheToolStaysWhole();
};

void TestExplorer::eventsMeanTheSameForTheSameSeed()
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

void TestExplorer::shorteningLeavesTheEventsThatMatter()
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

void TestExplorer::whateverHappensTheToolStaysWhole()
{
    const int events = numberFrom("EXPLORER_EVENTS", presetEvents);
    const auto first = static_cast<unsigned int>(numberFrom("EXPLORER_SEED", int(presetSeed)));
    const int sequences = qMax(1, events / eventsPerSequence);
    for (int i = 0; i < sequences; ++i) {
        const unsigned int seed = first + static_cast<unsigned int>(i);
        if (qEnvironmentVariableIsSet("EXPLORER_TRACE"))
            qInfo("seed %u", seed);
        const auto failure = explore(seed, explorerEvents(seed, eventsPerSequence));
        if (failure)
            QFAIL(qPrintable(report(seed, shortest(seed, *failure))));
    }
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

QTEST_MAIN(TestExplorer)
#include "tst_explorer.moc"
