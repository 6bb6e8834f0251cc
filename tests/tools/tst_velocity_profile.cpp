#include "ProfileArea.h"
#include "VelocityProfile.h"

#include <QTest>

namespace {

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

} // namespace

Q_DECLARE_METATYPE(RampSettings)

class VelocityProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void theProfileFollowsTheStages_data();
    void theProfileFollowsTheStages();
    void theProfileCoversTheWay_data();
    void theProfileCoversTheWay();
    void settingsThatAMoveNeeds_data();
    void settingsThatAMoveNeeds();
};

void VelocityProfileTest::theProfileFollowsTheStages_data()
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

void VelocityProfileTest::theProfileFollowsTheStages()
{
    QFETCH(RampSettings, settings);
    QFETCH(double, distance);
    QTEST(cornerText(velocityProfile(settings, distance)), "corners");
}

void VelocityProfileTest::theProfileCoversTheWay_data()
{
    QTest::addColumn<double>("distance");
    for (const int distance : {1, 2, 50, 700, 5000, -5000, 16777215})
        QTest::newRow(QByteArray::number(distance).constData()) << double(distance);
}

void VelocityProfileTest::theProfileCoversTheWay()
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

void VelocityProfileTest::settingsThatAMoveNeeds_data()
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

void VelocityProfileTest::settingsThatAMoveNeeds()
{
    QFETCH(RampSettings, settings);
    QTEST(missingSettings(settings).join(QLatin1Char(' ')), "missing");
}

QTEST_APPLESS_MAIN(VelocityProfileTest)
#include "tst_velocity_profile.moc"
