#include "HeadlessPlatform.h"
#include "TraceEvents.h"

#include <QTest>

namespace {

constexpr int defaultCount = 10000;
constexpr unsigned int defaultSeed = 1;
/// One sequence in so many with charts that lay themselves out, which takes far longer.
constexpr int laidOutShare = 32;
/// Sequences that one pair of tool and model goes through, one after another.
constexpr int sequencesPerPair = 100;

int numberFromEnvironment(const char *name, int otherwise)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : otherwise;
}

/// The first difference on a new pair, with the index of the event behind which it was.
struct Failure
{
    int index = -1;
    QString difference;
};

Failure failureOf(const TraceEvents &events, bool fixedPlotArea)
{
    TracePair pair(fixedPlotArea);
    for (int i = 0; i < events.size(); ++i) {
        pair.apply(events.at(i));
        const QString difference = pair.difference();
        if (!difference.isEmpty())
            return {i, difference};
    }
    return {};
}

/// The events without all those that the failure does not need.
TraceEvents shrunk(TraceEvents events, bool fixedPlotArea)
{
    const auto fails = [&](const TraceEvents &tried) {
        return failureOf(tried, fixedPlotArea).index >= 0;
    };
    for (int size = events.size() / 2; size > 0; size /= 2) {
        for (int first = 0; first + size <= events.size();) {
            TraceEvents fewer = events;
            fewer.remove(first, size);
            if (fails(fewer))
                events = fewer;
            else
                first += size;
        }
    }
    for (TraceEvent &event : events) {
        while (event.kind == TraceEvent::Samples && event.a > 1) {
            const int before = event.a;
            event.a = before > 4 ? before / 2 : before - 1;
            if (fails(events))
                continue;
            event.a = before;
            break;
        }
    }
    return events;
}

void report(TraceEvents events, bool fixedPlotArea)
{
    const Failure failure = failureOf(events, fixedPlotArea);
    if (failure.index < 0) {
        qCritical("not alone: only behind the sequences before it");
        return;
    }
    events = shrunk(events.mid(0, failure.index + 1), fixedPlotArea);
    for (const TraceEvent &event : qAsConst(events))
        qCritical("    %s,", qPrintable(textOf(event)));
    qCritical("%s", qPrintable(failureOf(events, fixedPlotArea).difference));
}

} // namespace

class TraceModelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { silenceHeadlessPlatform(); }
    void theToolDoesWhatTheModelDoes_data();
    void theToolDoesWhatTheModelDoes();
};

// TRACE_SEQUENCES and TRACE_SEED in the environment make longer and other runs; a sequence that
// failed alone is run again with its seed and one sequence.

void TraceModelTest::theToolDoesWhatTheModelDoes_data()
{
    QTest::addColumn<bool>("fixedPlotArea");
    QTest::newRow("plot area set") << true;
    QTest::newRow("plot area laid out") << false;
}

void TraceModelTest::theToolDoesWhatTheModelDoes()
{
    QFETCH(bool, fixedPlotArea);
    const int all = numberFromEnvironment("TRACE_SEQUENCES", defaultCount);
    const int count =
        fixedPlotArea ? qMax(all - all / laidOutShare, 1) : qMax(all / laidOutShare, 1);
    const auto seed = unsigned(numberFromEnvironment("TRACE_SEED", int(defaultSeed)));
    std::unique_ptr<TracePair> pair;
    int events = 0;
    int longest = 0;
    for (int i = 0; i < count; ++i) {
        if (i % sequencesPerPair == 0) {
            pair = std::make_unique<TracePair>(fixedPlotArea);
            QCOMPARE(pair->difference(), QString());
        }
        const unsigned int number = seed + unsigned(i);
        const TraceEvents sequence = traceEventsOf(number);
        for (int at = 0; at < sequence.size(); ++at) {
            pair->apply(sequence.at(at));
            ++events;
            longest = qMax(longest, pair->model.trace.size());
            const QString difference = pair->difference();
            if (difference.isEmpty())
                continue;
            qCritical("seed %u, event %d", number, at);
            report(sequence, fixedPlotArea);
            QFAIL(qPrintable(difference));
        }
    }
    qInfo("%d events, the longest trace %d points", events, longest);
    QVERIFY(count < 1000 || longest > 1000);
}

QTEST_MAIN(TraceModelTest)
#include "tst_trace_model.moc"
