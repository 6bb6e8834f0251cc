#include "FlightPathReader.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using drive::FlightPathFile;
using drive::readFlightPath;

namespace {

using Points = QVector<QPointF>;

FlightPathFile read(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    return readFlightPath(buffer);
}

QByteArray withNul(const char *front, const char *back)
{
    return QByteArray(front) + '\0' + back;
}

/// The points of one data line.
Points lineOf(const QByteArray &line)
{
    return read("title\n" + line + '\n').points;
}

} // namespace

class FlightPathReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void readsWholeFiles_data();
    void readsWholeFiles();
    void readsDataLines_data();
    void readsDataLines();
    void readsNumbers_data();
    void readsNumbers();
    void pointsThatAreNotFiniteAreLeftOut_data();
    void pointsThatAreNotFiniteAreLeftOut();
    void titlesAreInTheLocalEncoding_data();
    void titlesAreInTheLocalEncoding();
    void nothingIsReadFromADeviceThatIsNotOpen();
    void aMillionLinesGiveAMillionPoints();
    void tellsTheFieldsOfEachLineBehindTheTitle();
};

void FlightPathReaderTest::readsWholeFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::addColumn<Points>("points");
    const auto row = [](const char *name, const QByteArray &bytes, const char *title,
                        const Points &points) {
        QTest::newRow(name) << bytes << QString::fromLatin1(title) << points;
    };
    row("empty", "", "", {});
    row("one line break", "\n", "\n", {});
    row("title without a line break", "Demo", "Demo", {});
    row("title alone", "Demo\n", "Demo\n", {});
    row("title of numbers", "7;8\n1;2\n", "7;8\n", {{1, 2}});
    row("title like a comment", "#7;8\n1;2\n", "#7;8\n", {{1, 2}});
    row("empty title", "\n1;2\n", "\n", {{1, 2}});
    row("comment and stray number", "Demo\n1;2\n3;4;5;6\n#7;8\n9\n", "Demo\n",
        {{1, 2}, {3, 4}, {5, 6}});
    row("last line without a line break", "Demo\n1;2\n10;20", "Demo\n", {{1, 2}, {10, 2}});
    row("last line that is lost altogether", "Demo\n1;2\n;", "Demo\n", {{1, 2}});
    row("last line that keeps its separator", "Demo\n5;6", "Demo\n", {{5, 0}});
    row("lines that end as on Windows", "Demo\r\n1;2\r\n\r\n30;40\r\n", "Demo\n",
        {{1, 2}, {30, 40}});
    row("Windows without the last line break", "Demo\r\n1;2\r\n30;40", "Demo\n", {{1, 2}, {30, 4}});
    row("empty lines", "Demo\n\n\n1;2\n\n", "Demo\n", {{1, 2}});
    row("NUL in the title", withNul("De", "mo\n1;2\n"), "De", {{1, 2}});
    row("NUL at the front", withNul("", "Demo\n1;2\n"), "", {{1, 2}});
    row("NUL in the data", withNul("Demo\n1", ";2\n3;4\n"), "Demo\n", {{0, 2}, {3, 4}});
    row("NUL between fields", withNul("Demo\n1;2;", ";4\n"), "Demo\n", {{1, 2}, {0, 4}});
}

void FlightPathReaderTest::readsWholeFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, title);
    QFETCH(Points, points);
    const FlightPathFile fromBuffer = read(bytes);
    QCOMPARE(fromBuffer.title, title);
    QCOMPARE(fromBuffer.points, points);

    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("path.csv")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const FlightPathFile fromFile = readFlightPath(file);
    QCOMPARE(fromFile.title, title);
    QCOMPARE(fromFile.points, points);
}

void FlightPathReaderTest::readsDataLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<Points>("points");
    const auto row = [](const char *name, const char *line, const Points &points) {
        QTest::newRow(name) << QByteArray(line) << points;
    };
    row("one point", "1;2", {{1, 2}});
    row("several points", "1;2;3;4;5;6", {{1, 2}, {3, 4}, {5, 6}});
    row("odd last field", "1;2;3", {{1, 2}});
    row("one field", "9", {});
    row("nothing", "", {});
    row("separator alone", ";", {{0, 0}});
    row("separators alone", ";;;;", {{0, 0}, {0, 0}});
    row("separator at the end", "1;2;", {{1, 2}});
    row("blank fields", " ;  ", {{0, 0}});
    row("first field empty", ";5", {{0, 5}});
    row("second field empty", "5;", {{5, 0}});
    row("comment", "#1;2", {});
    row("comment sign behind a blank", " #1;2", {{0, 2}});
    row("comment sign in the second field", "1;#2", {{1, 0}});
    row("comment sign in a field alone", "#;5", {});
    row("quotes mean nothing", "\"1;2\";3;4", {{0, 0}, {3, 4}});
    row("other separators", "1,2\t3", {});
    row("words", "left;right", {{0, 0}});
}

void FlightPathReaderTest::readsDataLines()
{
    QFETCH(QByteArray, line);
    QFETCH(Points, points);
    QCOMPARE(lineOf(line), points);
}

void FlightPathReaderTest::readsNumbers_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<double>("number");
    const auto row = [](const char *name, const char *field, double number) {
        QTest::newRow(name) << QByteArray(field) << number;
    };
    row("whole", "1025", 1025);
    row("negative", "-200", -200);
    row("plus sign", "+7", 7);
    row("fraction", "10.75", 10.75);
    row("fraction alone", ".5", 0.5);
    row("point at the end", "5.", 5);
    row("comma decimal", "1,5", 0);
    row("thousands", "1,000", 0);
    row("thousands with a blank", "1 000", 0);
    row("exponent", "1.5e3", 1500);
    row("capital exponent", "2E-1", 0.2);
    row("exponent without digits", "2e", 0);
    row("blanks around", "  12 ", 12);
    row("tabs around", "\t12\t", 12);
    row("blank behind the sign", "- 12", 0);
    row("hexadecimal", "0x10", 0);
    row("unit behind", "12mm", 0);
    row("two points", "1.2.3", 0);
    row("largest", "1.7976931348623157e308", std::numeric_limits<double>::max());
    row("huge", "-1e308", -1e308);
    row("overflow", "1e999", 0);
    row("negative overflow", "-1e309", 0);
    row("underflow", "1e-999", 0);
    row("many digits", "123456789012345678901234567890", 123456789012345678901234567890.0);
}

void FlightPathReaderTest::readsNumbers()
{
    QFETCH(QByteArray, field);
    QFETCH(double, number);
    // As first and as second coordinate, exactly.
    const Points points = lineOf(field + ";1;2;" + field);
    QCOMPARE(points.size(), 2);
    QVERIFY2(points.at(0).x() == number, qPrintable(QString::number(points.at(0).x())));
    QVERIFY2(points.at(1).y() == number, qPrintable(QString::number(points.at(1).y())));
    QVERIFY(points.at(0).y() == 1.0);
    QVERIFY(points.at(1).x() == 2.0);
}

void FlightPathReaderTest::pointsThatAreNotFiniteAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<Points>("points");
    QTest::newRow("inf first") << QByteArray("inf;1;2;3") << Points{{2, 3}};
    QTest::newRow("inf second") << QByteArray("1;inf;2;3") << Points{{2, 3}};
    QTest::newRow("-inf") << QByteArray("0;1;-inf;5;2;3") << Points{{0, 1}, {2, 3}};
    QTest::newRow("nan") << QByteArray("nan;nan") << Points{};
    QTest::newRow("nan second") << QByteArray("4;nan") << Points{};
    QTest::newRow("nan in an odd last field") << QByteArray("4;5;nan") << Points{{4, 5}};
}

void FlightPathReaderTest::pointsThatAreNotFiniteAreLeftOut()
{
    QFETCH(QByteArray, line);
    QFETCH(Points, points);
    QCOMPARE(lineOf(line), points);
}

void FlightPathReaderTest::titlesAreInTheLocalEncoding_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("UTF-8") << QByteArray("Kreis \xC3\xBC");
    QTest::newRow("Latin-1") << QByteArray("Kreis \xFC");
}

void FlightPathReaderTest::titlesAreInTheLocalEncoding()
{
    QFETCH(QByteArray, bytes);
    const FlightPathFile file = read(bytes + "\n1;2\n");
    QCOMPARE(file.title, QString::fromLocal8Bit(bytes) + QLatin1Char('\n'));
    QVERIFY(file.title.startsWith(QLatin1String("Kreis ")));
    QCOMPARE(file.points, (Points{{1, 2}}));
    // Data with such letters is read as well.
    QCOMPARE(lineOf(bytes + ";5;6;7"), (Points{{0, 5}, {6, 7}}));
}

void FlightPathReaderTest::nothingIsReadFromADeviceThatIsNotOpen()
{
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QBuffer): device not open");
    QBuffer closed;
    const FlightPathFile file = readFlightPath(closed);
    QCOMPARE(file.title, QString());
    QCOMPARE(file.points, Points());
}

void FlightPathReaderTest::aMillionLinesGiveAMillionPoints()
{
    constexpr int lineCount = 1000000;
    QByteArray bytes("many\n");
    for (int i = 0; i < lineCount; ++i)
        bytes += QByteArray::number(i) + ";-1\n";
    const FlightPathFile file = read(bytes);
    QCOMPARE(file.points.size(), lineCount);
    QCOMPARE(file.points.constFirst(), QPointF(0, -1));
    QCOMPARE(file.points.constLast(), QPointF(lineCount - 1, -1));
}

void FlightPathReaderTest::tellsTheFieldsOfEachLineBehindTheTitle()
{
    QByteArray bytes("a;b\n1; 2\n#3;4;5\n\n6\n7;8");
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::ReadOnly | QIODevice::Text));
    QVector<QStringList> told;
    readFlightPath(buffer, [&told](const QStringList &fields) { told.append(fields); });
    const auto fields = [](const char *text) {
        return QString::fromLatin1(text).split(QLatin1Char(';'));
    };
    QCOMPARE(told, (QVector<QStringList>{fields("1; 2"), fields("#3;4;5"), fields(""), fields("6"),
                                         fields("7;")}));
}

QTEST_APPLESS_MAIN(FlightPathReaderTest)
#include "tst_flight_path_reader.moc"
