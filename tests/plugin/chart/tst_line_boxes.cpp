#include "LineBoxes.h"

#include <QTest>

#include <random>

using drive::LineBoxes;

namespace {

constexpr int perBox = LineBoxes::linesPerBox;

/// A line of its own place: `number` pixels to the right and as many down.
QRect extent(int number)
{
    return {10 * number, 10 * number, 8, 8};
}

LineBoxes boxesOf(int lines)
{
    LineBoxes boxes;
    for (int i = 0; i < lines; ++i)
        boxes.append(extent(i));
    return boxes;
}

/// The lines of the boxes that meet an area, in the order of the visits.
QVector<int> visited(const LineBoxes &boxes, const QRegion &area)
{
    QVector<int> lines;
    boxes.visitAt(area, [&](int first, int last) {
        for (int i = first; i < last; ++i)
            lines << i;
    });
    return lines;
}

QVector<int> row(int first, int last)
{
    QVector<int> all;
    for (int i = first; i < last; ++i)
        all << i;
    return all;
}

} // namespace

class LineBoxesTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutLinesNothingIsVisited();
    void aBoxReachesAsFarAsItsLines();
    void onlyLinesNearAnAreaAreVisited();
    void removedLinesAreNotVisited();
    void allLinesMayBeRemoved();
    void newBoxesForgetTheOldOnes();
    void theyAgreeWithAListOfTheLines();
};

void LineBoxesTest::withoutLinesNothingIsVisited()
{
    const LineBoxes boxes;
    QCOMPARE(boxes.lines(), 0);
    QVERIFY(visited(boxes, QRect(-1000, -1000, 2000, 2000)).isEmpty());
}

void LineBoxesTest::aBoxReachesAsFarAsItsLines()
{
    LineBoxes boxes;
    QRect wanted(10, 20, 5, 6);
    boxes.append(wanted);
    // Over each edge in turn, over two at once, and over none.
    for (const QRect &line : {QRect(8, 22, 1, 1), QRect(12, 17, 1, 1), QRect(12, 22, 9, 1),
                              QRect(12, 22, 1, 9), QRect(4, 5, 3, 3), QRect(12, 22, 1, 1)}) {
        boxes.append(line);
        wanted |= line;
        const QVector<int> all = row(0, boxes.lines());
        for (const QPoint &corner : {wanted.topLeft(), wanted.bottomRight()}) {
            QCOMPARE(visited(boxes, QRect(corner, QSize(1, 1))), all);
            for (const QPoint &beyond : {QPoint(1, 0), QPoint(0, 1)}) {
                const QPoint outward = corner == wanted.topLeft() ? -beyond : beyond;
                QVERIFY(visited(boxes, QRect(corner + outward, QSize(1, 1))).isEmpty());
            }
        }
    }
}

void LineBoxesTest::onlyLinesNearAnAreaAreVisited()
{
    const LineBoxes boxes = boxesOf(3 * perBox + 1);
    QCOMPARE(visited(boxes, extent(1)), row(0, perBox));
    QCOMPARE(visited(boxes, extent(2 * perBox - 1)), row(perBox, 2 * perBox));
    QCOMPARE(visited(boxes, extent(3 * perBox)), row(3 * perBox, 3 * perBox + 1));
    QCOMPARE(visited(boxes, QRegion(extent(0)) + extent(2 * perBox)),
             row(0, perBox) + row(2 * perBox, 3 * perBox));
    // Just beside the last pixel, and between two boxes.
    QVERIFY(visited(boxes, extent(3 * perBox).translated(8, 0)).isEmpty());
    QVERIFY(visited(boxes, QRect(10 * perBox - 2, 10 * perBox - 2, 2, 2)).isEmpty());
}

void LineBoxesTest::removedLinesAreNotVisited()
{
    LineBoxes boxes = boxesOf(3 * perBox);
    boxes.removeOldest(perBox + 3);
    QCOMPARE(boxes.lines(), 2 * perBox - 3);
    QCOMPARE(visited(boxes, extent(perBox + 5)), row(0, perBox - 3));
    QCOMPARE(visited(boxes, extent(2 * perBox)), row(perBox - 3, 2 * perBox - 3));
    QVERIFY(visited(boxes, extent(0)).isEmpty());
}

void LineBoxesTest::allLinesMayBeRemoved()
{
    for (int lines : {1, perBox - 1, perBox, perBox + 1}) {
        LineBoxes boxes = boxesOf(lines);
        boxes.removeOldest(lines);
        QCOMPARE(boxes.lines(), 0);
        QVERIFY(visited(boxes, QRect(-1000, -1000, 5000, 5000)).isEmpty());
        boxes.append(extent(500));
        QCOMPARE(visited(boxes, extent(500)), row(0, 1));
    }
}

void LineBoxesTest::newBoxesForgetTheOldOnes()
{
    LineBoxes boxes = boxesOf(perBox + 5);
    boxes.removeOldest(3);
    boxes = {};
    QCOMPARE(boxes.lines(), 0);
    for (int i = 0; i < perBox + 1; ++i)
        boxes.append(extent(i));
    // Full boxes from the first line on.
    QCOMPARE(visited(boxes, extent(0)), row(0, perBox));
    QCOMPARE(visited(boxes, extent(perBox)), row(perBox, perBox + 1));
}

void LineBoxesTest::theyAgreeWithAListOfTheLines()
{
    std::mt19937 random(31);
    const auto below = [&](int limit) { return int(random() % unsigned(limit)); };
    LineBoxes boxes;
    QVector<QRect> lines;
    for (int step = 0; step < 4000; ++step) {
        if (below(3) > 0 || lines.isEmpty()) {
            lines << QRect(below(500), below(500), 1 + below(40), 1 + below(40));
            boxes.append(lines.constLast());
        } else if (below(20) == 0) {
            const int number = 1 + below(lines.size());
            boxes.removeOldest(number);
            lines.remove(0, number);
        }
        QCOMPARE(boxes.lines(), lines.size());
        const QRegion area = QRegion(below(500), below(500), 1 + below(30), 1 + below(30)) +
                             QRect(below(500), below(500), 1 + below(30), 1 + below(30));
        const QVector<int> seen = visited(boxes, area);
        for (int i = 0; i < lines.size(); ++i)
            QVERIFY(seen.contains(i) || !area.intersects(lines.at(i)));
    }
}

QTEST_APPLESS_MAIN(LineBoxesTest)
#include "tst_line_boxes.moc"
