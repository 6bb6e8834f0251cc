#include "MoveTally.h"
#include "RandomMoves.h"

#include <QTest>

using namespace workbench;

namespace {

const MoveArea area{{-300, 40}, {900, 1000}};
constexpr int many = 1000;

bool contains(const QPoint &point)
{
    return point.x() >= area.low.x() && point.x() <= area.high.x() && point.y() >= area.low.y() &&
           point.y() <= area.high.y();
}

} // namespace

class AppRandomMovesTest : public QObject
{
    Q_OBJECT

private slots:
    void movesComeFromTheSeedAlone();
    void movesStayWithinTheArea();
    void areaMayBeAPoint();
    void allKindsAreAmongThem();
    void tallyGivesLeastMedianAndLargest();
    void turnedMovesHaveNoDeviation();
    void lineIsAboutTheLastHundred();
};

void AppRandomMovesTest::movesComeFromTheSeedAlone()
{
    const auto one = randomMoves(many, 7, area);
    const auto same = randomMoves(many, 7, area);
    const auto other = randomMoves(many, 8, area);
    const auto fewer = randomMoves(10, 7, area);
    int different = 0;
    for (int i = 0; i < many; ++i) {
        QCOMPARE(same.at(i).target, one.at(i).target);
        QCOMPARE(same.at(i).turnTarget, one.at(i).turnTarget);
        QCOMPARE(same.at(i).kind, one.at(i).kind);
        different += other.at(i).target != one.at(i).target ? 1 : 0;
    }
    QVERIFY(different > many / 2);
    QCOMPARE(fewer.constLast().target, one.at(9).target);
}

void AppRandomMovesTest::movesStayWithinTheArea()
{
    for (const ScriptedMove &move : randomMoves(many, 1, area)) {
        // A move of no length at the very begin stays at the origin.
        QVERIFY(contains(move.target) || move.target == QPoint());
        QVERIFY(move.kind != ScriptedMove::Turned || contains(move.turnTarget));
    }
}

void AppRandomMovesTest::areaMayBeAPoint()
{
    const MoveArea point{{5, 6}, {5, 6}};
    for (const ScriptedMove &move : randomMoves(100, 3, point).mid(1))
        QVERIFY(move.target == QPoint(5, 6) || move.target.x() * move.target.y() == 0);
}

void AppRandomMovesTest::allKindsAreAmongThem()
{
    QPoint from;
    int turned = 0;
    int stopped = 0;
    int ofNoLength = 0;
    int alongOneAxis = 0;
    for (const ScriptedMove &move : randomMoves(many, 1, area)) {
        turned += move.kind == ScriptedMove::Turned ? 1 : 0;
        stopped += move.kind == ScriptedMove::Stopped ? 1 : 0;
        const QPoint way = move.target - from;
        ofNoLength += way.isNull() ? 1 : 0;
        alongOneAxis += !way.isNull() && (way.x() == 0 || way.y() == 0) ? 1 : 0;
        from = move.kind == ScriptedMove::Turned ? move.turnTarget : move.target;
    }
    QVERIFY(turned > many / 20 && stopped > many / 20);
    QVERIFY(ofNoLength > many / 50 && alongOneAxis > many / 20);
}

void AppRandomMovesTest::tallyGivesLeastMedianAndLargest()
{
    MoveTally tally;
    tally.add({1.5, 60, 0.24, 300});
    tally.add({0.5, 100, 0.76, 100});
    tally.add({1.0, 70, 0.5, 200});
    QCOMPARE(tally.table(),
             (QStringList{QStringLiteral("3 moves                  least    median   largest"),
                          QStringLiteral("duration (s)              0.50      1.00      1.50"),
                          QStringLiteral("end seen late (ms)        60.0      70.0     100.0"),
                          QStringLiteral("deviation (units)          0.2       0.5       0.8"),
                          QStringLiteral("samples                    100       200       300")}));
}

void AppRandomMovesTest::turnedMovesHaveNoDeviation()
{
    MoveTally tally;
    tally.add({1, 1, {}, 1});
    QVERIFY(tally.table().at(3).contains(QLatin1Char('-')));
    tally.add({1, 1, 0.5, 1});
    QCOMPARE(tally.table().at(3).simplified(), QStringLiteral("deviation (units) 0.5 0.5 0.5"));
}

void AppRandomMovesTest::lineIsAboutTheLastHundred()
{
    MoveTally tally;
    for (int i = 0; i < 200; ++i) {
        tally.add({i < 100 ? 1.0 : 2.0, 0, i == 50 ? 0.9 : 0.1, 10});
        QCOMPARE(tally.isLineDue(), i == 99 || i == 199);
    }
    QCOMPARE(tally.line(), QStringLiteral("moves 101 to 200: 200.00 s, 1000 samples; at most 0.1 "
                                          "units off their lines"));
}

QTEST_APPLESS_MAIN(AppRandomMovesTest)
#include "tst_app_random_moves.moc"
