#include "PlotScale.h"

#include <QLocale>
#include <QTest>

class PlotScaleTest : public QObject
{
    Q_OBJECT

private slots:
    void ticksAreRound_data();
    void ticksAreRound();
};

void PlotScaleTest::ticksAreRound_data()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("steps");
    QTest::addColumn<QString>("ticks");
    QTest::newRow("ones") << 3.2 << 4 << "0 1 2 3";
    QTest::newRow("twos") << 10.0 << 5 << "0 2 4 6 8 10";
    QTest::newRow("fives") << 1600.0 << 4 << "0 500 1000 1500";
    QTest::newRow("fractions") << 0.05 << 3 << "0.00 0.02 0.04";
}

void PlotScaleTest::ticksAreRound()
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

QTEST_APPLESS_MAIN(PlotScaleTest)
#include "tst_plot_scale.moc"
