#include "FaultLinkRig.h"

#include <QtTest>

#include <limits>

using namespace workbench;

// Faults that depend on chance, each with what it gives in many requests.
static void addFaultsOfChance()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"lose:0.5", "corrupt:0.5", "noise:100000"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

static QStringList manyReplies(const QString &fault, quint32 seed,
                               const QString &otherFault = QString())
{
    FaultLinkRig rig(seed);
    for (const QString &text : {otherFault, fault}) {
        if (!text.isEmpty() && !rig.on(qPrintable(text)))
            return {};
    }
    QStringList replies;
    for (int i = 0; i < 50; ++i)
        replies << rig.read(FaultLinkRig::setting) << rig.positions();
    return replies;
}

class FaultChanceTest : public QObject
{
    Q_OBJECT

private slots:
    void sameSeedRepeatsReplies_data();
    void sameSeedRepeatsReplies();
    void otherSeedsGiveOtherReplies_data();
    void otherSeedsGiveOtherReplies();
    void chanceOfAFaultDoesNotDependOnOthers();
    void probabilityIsTheShareOfReplies_data();
    void probabilityIsTheShareOfReplies();
    void corruptFlipsOneBit();
    void noiseStaysWithinItsBounds();
};

void FaultChanceTest::sameSeedRepeatsReplies_data()
{
    addFaultsOfChance();
}

void FaultChanceTest::sameSeedRepeatsReplies()
{
    QFETCH(QString, fault);
    const QStringList replies = manyReplies(fault, 7);
    QCOMPARE(replies.size(), 100);
    QCOMPARE(manyReplies(fault, 7), replies);
}

void FaultChanceTest::otherSeedsGiveOtherReplies_data()
{
    addFaultsOfChance();
}

void FaultChanceTest::otherSeedsGiveOtherReplies()
{
    QFETCH(QString, fault);
    QVERIFY(manyReplies(fault, 7) != manyReplies(fault, 8));
}

void FaultChanceTest::chanceOfAFaultDoesNotDependOnOthers()
{
    const QString lose = QStringLiteral("lose:0.5");
    QCOMPARE(manyReplies(lose, 7, QStringLiteral("noise:0")), manyReplies(lose, 7));
    QCOMPARE(manyReplies(lose, 7, QStringLiteral("corrupt:0")), manyReplies(lose, 7));
}

void FaultChanceTest::probabilityIsTheShareOfReplies_data()
{
    QTest::addColumn<double>("share");
    QTest::newRow("lose:0.1") << 0.1;
    QTest::newRow("lose:0.9") << 0.9;
    QTest::newRow("corrupt:0.1") << 0.1;
    QTest::newRow("corrupt:1") << 1.0;
}

void FaultChanceTest::probabilityIsTheShareOfReplies()
{
    QFETCH(double, share);
    FaultLinkRig rig;
    QVERIFY(rig.on(QTest::currentDataTag()));
    constexpr int count = 10000;
    int spoilt = 0;
    for (int i = 0; i < count; ++i)
        spoilt += rig.read(FaultLinkRig::setting) == QStringLiteral("500") ? 0 : 1;
    const double seen = double(spoilt) / count;
    QVERIFY2(qAbs(seen - share) < 0.015, qPrintable(QString::number(seen)));
}

void FaultChanceTest::corruptFlipsOneBit()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("corrupt:1"));
    quint64 flipped = 0;
    const LinkReply right = packPositions(10, -20);
    for (int i = 0; i < 2000; ++i) {
        LinkReply reply;
        QVERIFY(
            rig.link.userFunction(&reply.a, &reply.b, bothPositionsFunction, 0, 0, &reply.value));
        const quint64 wrong = quint64(reply.value ^ right.value) |
                              quint64(reply.a ^ right.a) << 32 | quint64(reply.b ^ right.b) << 40;
        QCOMPARE(qPopulationCount(wrong), 1u);
        flipped |= wrong;
    }
    QCOMPARE(flipped, (quint64(1) << 48) - 1);
    quint32 flippedInRegister = 0;
    for (int i = 0; i < 2000; ++i)
        flippedInRegister |= quint32(rig.read(FaultLinkRig::setting).toInt() ^ 500);
    QCOMPARE(flippedInRegister, std::numeric_limits<quint32>::max());
}

void FaultChanceTest::noiseStaysWithinItsBounds()
{
    FaultLinkRig rig;
    QVERIFY(rig.on("noise:3"));
    QSet<int> seen;
    for (int i = 0; i < 300; ++i)
        seen.insert(rig.read(FaultLinkRig::position0).toInt());
    QCOMPARE(seen, (QSet<int>{7, 8, 9, 10, 11, 12, 13}));
    QCOMPARE(rig.read(FaultLinkRig::setting), QStringLiteral("500"));
    QCOMPARE(rig.read(FaultLinkRig::velocity0), QStringLiteral("30"));
}

QTEST_GUILESS_MAIN(FaultChanceTest)
#include "tst_fault_chance.moc"
