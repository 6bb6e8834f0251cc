#include "Fault.h"

#include <QRegularExpression>
#include <QSet>
#include <QtTest>

using namespace workbench;

class FaultNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void eachFaultIsDescribedOnce_data();
    void eachFaultIsDescribedOnce();
    void kindsAndNamesAreUnique();
    void thereIsMoreThanAFew();
    void textsAreRead_data();
    void textsAreRead();
    void wrongTextsAreRefused_data();
    void wrongTextsAreRefused();
    void unknownNamesAreAnsweredWithTheKnownOnes();
    void textOfAFaultIsReadBack();
    void helpNamesEachFaultWithItsRange();
};

void FaultNamesTest::eachFaultIsDescribedOnce_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < faultTable().size(); ++i)
        QTest::newRow(qPrintable(faultTable().at(i).name)) << i;
}

void FaultNamesTest::eachFaultIsDescribedOnce()
{
    QFETCH(int, index);
    const FaultInfo &info = faultTable().at(index);
    QVERIFY(QRegularExpression(QStringLiteral("^[a-z]+(-[a-z]+)*$")).match(info.name).hasMatch());
    QVERIFY(info.description.size() > 10 && info.description.size() < 80);
    QVERIFY(!info.description.contains(QLatin1Char('\n')));
    QVERIFY(!info.description.endsWith(QLatin1Char('.')));
    QVERIFY(&faultInfo(info.kind) == &info);
    if (!info.parameter) {
        QCOMPARE(info.usage(), info.name);
        return;
    }
    QVERIFY(info.parameter->minimum < info.parameter->maximum);
    QVERIFY(info.parameter->preset >= info.parameter->minimum);
    QVERIFY(info.parameter->preset <= info.parameter->maximum);
    QVERIFY(!info.parameter->meaning.isEmpty());
    QCOMPARE(info.usage(), info.name + QStringLiteral("[:%1]").arg(info.parameter->name));
}

void FaultNamesTest::kindsAndNamesAreUnique()
{
    QSet<int> kinds;
    QSet<QString> names;
    for (const FaultInfo &info : faultTable()) {
        kinds.insert(int(info.kind));
        names.insert(info.name);
    }
    QCOMPARE(kinds.size(), faultTable().size());
    QCOMPARE(names.size(), faultTable().size());
    QCOMPARE(faultTable().size(), int(FaultKind::Spin) + 1);
}

void FaultNamesTest::thereIsMoreThanAFew()
{
    QVERIFY(faultTable().size() >= 16);
}

void FaultNamesTest::textsAreRead_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("parameter");
    const auto row = [](const char *text, FaultKind kind, double parameter) {
        QTest::newRow(text) << int(kind) << parameter;
    };
    row("no-reply", FaultKind::NoReply, 0);
    row("late", FaultKind::Late, 50);
    row("late:0", FaultKind::Late, 0);
    row("late:10000", FaultKind::Late, 10000);
    row("lose:0.25", FaultKind::Lose, 0.25);
    row("lose:1e-1", FaultKind::Lose, 0.1);
    row("lose:1", FaultKind::Lose, 1);
    row("jump:-1000000", FaultKind::Jump, -1000000);
    row("stuck-axis:1", FaultKind::StuckAxis, 1);
}

void FaultNamesTest::textsAreRead()
{
    QFETCH(int, kind);
    QFETCH(double, parameter);
    const ParsedFault parsed = parseFault(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY2(parsed.fault.has_value(), qPrintable(parsed.error));
    QVERIFY(parsed.error.isEmpty());
    QVERIFY(*parsed.fault == (Fault{FaultKind(kind), parameter}));
}

void FaultNamesTest::wrongTextsAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *text, const char *error) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(error);
    };
    row("no number", "late:", R"(MS of "late" must be a whole number from 0 to 10000, not "")");
    row("a word", "late:soon",
        R"(MS of "late" must be a whole number from 0 to 10000, not "soon")");
    row("too large", "late:10001",
        R"(MS of "late" must be a whole number from 0 to 10000, not "10001")");
    row("too small", "late:-1", R"(MS of "late" must be a whole number from 0 to 10000, not "-1")");
    row("decimals", "late:1.5",
        R"(MS of "late" must be a whole number from 0 to 10000, not "1.5")");
    row("beyond integers", "late:99999999999",
        R"(MS of "late" must be a whole number from 0 to 10000, not "99999999999")");
    row("a decimal comma", "lose:0,5", R"(P of "lose" must be a number from 0 to 1, not "0,5")");
    row("above one", "lose:1.01", R"(P of "lose" must be a number from 0 to 1, not "1.01")");
    row("not a number", "lose:nan", R"(P of "lose" must be a number from 0 to 1, not "nan")");
    row("infinite", "lose:inf", R"(P of "lose" must be a number from 0 to 1, not "inf")");
    row("never", "fail-every:0",
        R"(N of "fail-every" must be a whole number from 1 to 1000000, not "0")");
    row("third axis", "stuck-axis:2",
        R"(AXIS of "stuck-axis" must be a whole number from 0 to 1, not "2")");
    row("unwanted parameter", "unplug:1", R"("unplug" has no parameter)");
    row("unwanted colon", "unplug:", R"("unplug" has no parameter)");
    row("line break", "late:1\n2",
        R"(MS of "late" must be a whole number from 0 to 10000, not "1 2")");
}

void FaultNamesTest::wrongTextsAreRefused()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    const ParsedFault parsed = parseFault(text);
    QVERIFY(!parsed.fault);
    QCOMPARE(parsed.error, error);
}

void FaultNamesTest::unknownNamesAreAnsweredWithTheKnownOnes()
{
    for (const char *text : {"", "bogus", "Late", " late", "late ", ":5", "bogus:5"}) {
        const ParsedFault parsed = parseFault(QString::fromLatin1(text));
        QVERIFY(!parsed.fault);
        const QString name = QString::fromLatin1(text).section(QLatin1Char(':'), 0, 0).simplified();
        QVERIFY2(parsed.error.startsWith(QStringLiteral("there is no fault \"%1\"; known are "
                                                        "no-reply, late, ")
                                             .arg(name)),
                 qPrintable(parsed.error));
        for (const FaultInfo &info : faultTable())
            QVERIFY(parsed.error.contains(info.name));
        QVERIFY(!parsed.error.contains(QLatin1Char('\n')));
    }
    QVERIFY(parseFault(QString(100000, QLatin1Char('x'))).error.size() < 1000);
}

void FaultNamesTest::textOfAFaultIsReadBack()
{
    for (const FaultInfo &info : faultTable()) {
        const Fault fault = presetFault(info.kind);
        const ParsedFault parsed = parseFault(faultText(fault));
        QVERIFY2(parsed.fault && *parsed.fault == fault, qPrintable(faultText(fault)));
    }
    QCOMPARE(faultText({FaultKind::Lose, 0.125}), QStringLiteral("lose:0.125"));
    QCOMPARE(faultText({FaultKind::Jump, -1000000}), QStringLiteral("jump:-1000000"));
    QCOMPARE(faultText({FaultKind::Spin, 0}), QStringLiteral("spin"));
}

void FaultNamesTest::helpNamesEachFaultWithItsRange()
{
    const QString help = faultHelp();
    for (const FaultInfo &info : faultTable()) {
        QVERIFY(help.contains(info.usage() + QLatin1Char(' ')));
        QVERIFY(help.contains(info.description + QLatin1Char('\n')));
    }
    QVERIFY(help.contains(QStringLiteral("delay in milliseconds, 0 to 10000; 50 when left out")));
    QVERIFY(help.endsWith(QLatin1Char('\n')));
}

QTEST_GUILESS_MAIN(FaultNamesTest)
#include "tst_fault_names.moc"
