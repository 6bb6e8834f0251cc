#include "PositionRig.h"
#include "ProfileArea.h"

#include <QTest>

class PositionModeProfileTest : public PositionRig
{
    Q_OBJECT

private slots:
    void theProfileIsThatOfTheNextMove();
    void theProfileTakesAsLongAsTheMove_data();
    void theProfileTakesAsLongAsTheMove();
    void theProfileStaysDuringTheMove();
    void withoutAProfileThereIsAReason();
    void thePlotIsDrawn();
};

void PositionModeProfileTest::theProfileIsThatOfTheNextMove()
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

void PositionModeProfileTest::theProfileTakesAsLongAsTheMove_data()
{
    QTest::addColumn<int>("distance");
    for (const int distance : {20, 400, 1500, 5000, -5000})
        QTest::newRow(QByteArray::number(distance).constData()) << distance;
}

void PositionModeProfileTest::theProfileTakesAsLongAsTheMove()
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

void PositionModeProfileTest::theProfileStaysDuringTheMove()
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

void PositionModeProfileTest::withoutAProfileThereIsAReason()
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

void PositionModeProfileTest::thePlotIsDrawn()
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

QTEST_MAIN(PositionModeProfileTest)
#include "tst_position_mode_profile.moc"
