#include "ProgramRig.h"
#include "ReportComparison.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace workbench;

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

QStringList words(const QString &line)
{
    QStringList all = line.split(QLatin1Char(' '));
    all.removeAll(QString());
    return all;
}

QJsonObject json(const char *bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

} // namespace

class AppReportTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void differencesAreFound_data();
    void differencesAreFound();
    void optionsMayDiffer();

    void movesAreReported();
    void flightPathIsReported();
    void failedRequestsAreCounted();
    void sameRunHasNoDifference();
    void differencesEndWithOne();
    void unusableBaselinesExitWithTwo_data();
    void unusableBaselinesExitWithTwo();

private:
    ProgramRig::Ending run(const QString &options) const
    {
        return rig->run(words(text("--unattended --clock simulated ") + options));
    }
    QJsonArray moves(const char *name) const
    {
        QString problem;
        const auto report = readReport(rig->filePath(text(name)), &problem);
        return report.value_or(QJsonObject()).value(text("moves")).toArray();
    }

    std::unique_ptr<ProgramRig> rig;
};

void AppReportTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
}

void AppReportTest::differencesAreFound_data()
{
    QTest::addColumn<QByteArray>("now");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const char *now, const char *before, double tolerance,
                        const QStringList &lines) {
        QTest::newRow(name) << QByteArray(now) << QByteArray(before) << tolerance << lines;
    };
    row("none", R"([{"a": 1.5, "b": "x"}])", R"([{"a": 1.5, "b": "x"}])", 0, {});
    row("number", R"([{"a": 1.5}])", R"([{"a": 1.4}])", 0, {text("moves[1].a: 1.5, was 1.4")});
    row("number within tolerance", R"([{"a": 100}])", R"([{"a": 98}])", 2, {});
    row("number beyond tolerance", R"([{"a": 100}])", R"([{"a": 97.9}])", 2,
        {text("moves[1].a: 100, was 97.9")});
    row("negative number", R"([{"a": -100}])", R"([{"a": 100}])", 50,
        {text("moves[1].a: -100, was 100")});
    row("text", R"([{"b": "x"}])", R"([{"b": "y"}])", 100, {text("moves[1].b: \"x\", was \"y\"")});
    row("position", R"([{"p": [1, 2]}])", R"([{"p": [1, 3]}])", 0,
        {text("moves[1].p[2]: 2, was 3")});
    row("key more", R"([{"a": 1}])", R"([{}])", 100, {text("moves[1].a: 1, was nothing")});
    row("key less", R"([{}])", R"([{"a": 1}])", 100, {text("moves[1].a: nothing, was 1")});
    row("move less", R"([{}])", R"([{}, {"a": 1}])", 100,
        {text("moves[2]: nothing, was {\"a\":1}")});
}

void AppReportTest::differencesAreFound()
{
    QFETCH(QByteArray, now);
    QFETCH(QByteArray, before);
    QFETCH(double, tolerance);
    QFETCH(QStringList, lines);
    const QJsonObject report = json("{\"moves\": " + now + "}");
    QVERIFY(report.value(text("moves")).isArray());
    QCOMPARE(differences(report, json("{\"moves\": " + before + "}"), tolerance), lines);
}

void AppReportTest::optionsMayDiffer()
{
    QCOMPARE(differences(json(R"({"options": {"seed": 1}, "moves": []})"),
                         json(R"({"options": {"seed": 2}, "moves": []})"), 0),
             QStringList());
}

void AppReportTest::movesAreReported()
{
    QCOMPARE(run(text("--target 700,-311 --target 700,-311 --report r.json")).exitCode, 0);
    const QJsonArray all = moves("r.json");
    QCOMPARE(all.size(), 2);
    const QJsonObject first = all.at(0).toObject();
    QCOMPARE(first.value(text("kind")).toString(), text("straight"));
    QCOMPARE(first.value(text("start_units")).toArray(), (QJsonArray{0, 0}));
    QCOMPARE(first.value(text("end_units")).toArray(), (QJsonArray{700, -311}));
    QCOMPARE(first.value(text("failed_requests")).toInt(-1), 0);
    // Less the requests of the start.
    const double promised = first.value(text("promised_duration_s")).toDouble();
    const double duration = first.value(text("duration_s")).toDouble();
    QVERIFY2(promised > 0.5 && duration > promised && duration < promised + 0.02,
             qPrintable(text("%1, %2").arg(promised).arg(duration)));
    const double lateness = first.value(text("end_seen_late_ms")).toDouble();
    QVERIFY(lateness > 0 && lateness <= 100);
    QCOMPARE(all.at(1).toObject().value(text("promised_duration_s")).toDouble(-1), 0.0);
    QCOMPARE(all.at(1).toObject().value(text("number")).toInt(), 2);
}

void AppReportTest::flightPathIsReported()
{
    rig->write(text("path.csv"), "Path\n50;0\n50;20\n");
    QCOMPARE(run(text("--flight-path path.csv --report r.json")).exitCode, 0);
    const QJsonArray all = moves("r.json");
    QCOMPARE(all.size(), 1);
    const QJsonArray points = all.at(0).toObject().value(text("points")).toArray();
    QCOMPARE(points.size(), 2);
    QCOMPARE(points.at(1).toObject().value(text("target_units")).toArray(), (QJsonArray{50, 20}));
    QCOMPARE(points.at(1).toObject().value(text("reached_after_s")),
             all.at(0).toObject().value(text("duration_s")));
}

void AppReportTest::failedRequestsAreCounted()
{
    QCOMPARE(run(text("--target 300,200 --fault half-write --report r.json")).exitCode, 0);
    // Nine writes of the start, and the target's two with the next update.
    QCOMPARE(moves("r.json").at(0).toObject().value(text("failed_requests")).toInt(), 11);
}

void AppReportTest::sameRunHasNoDifference()
{
    QCOMPARE(run(text("--random 20 --report a.json")).exitCode, 0);
    const auto again = run(text("--random 20 --report b.json --baseline a.json"));
    QCOMPARE(again.exitCode, 0);
    QCOMPARE(again.output.constLast(), text("all moves as planned"));
    QFile one(rig->filePath(text("a.json")));
    QFile other(rig->filePath(text("b.json")));
    QVERIFY(one.open(QIODevice::ReadOnly) && other.open(QIODevice::ReadOnly));
    QVERIFY(one.readAll() == other.readAll());
}

void AppReportTest::differencesEndWithOne()
{
    QCOMPARE(run(text("--target 300,200 --report a.json")).exitCode, 0);
    const auto exact = run(text("--target 300,200 --link-cost 520 --baseline a.json"));
    QCOMPARE(exact.exitCode, 1);
    const QStringList lines = exact.output.filter(text("moves[1]."));
    QVERIFY(!lines.filter(text("moves[1].samples: ")).isEmpty());
    QCOMPARE(exact.complaints,
             QStringList{text("workbench: %1 differences from a.json").arg(lines.size())});
    QCOMPARE(
        run(text("--target 300,200 --link-cost 520 --baseline a.json --tolerance 50")).exitCode, 0);
}

void AppReportTest::unusableBaselinesExitWithTwo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "none.json"
                             << "No such file or directory";
    QTest::newRow("no report") << "other.json"
                               << "is not a report of version 1";
    QTest::newRow("later version") << "later.json"
                                   << "is not a report of version 1";
}

void AppReportTest::unusableBaselinesExitWithTwo()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    rig->write(text("other.json"), "{\"moves\": []}");
    rig->write(text("later.json"), "{\"schema\": \"workbench-report\", \"schema_version\": 2}");
    const auto ending = run(text("--target 30,20 --record r.csv --baseline ") + name);
    QCOMPARE(ending.exitCode, 2);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(ending.complaints, QStringList{text("workbench: %1: %2").arg(name, reason)});
    QVERIFY(!rig->files().contains(text("r.csv")));
}

QTEST_GUILESS_MAIN(AppReportTest)
#include "tst_app_report.moc"
