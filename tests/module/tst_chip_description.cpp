#include "ChipDescriptionReader.h"
#include "ShippedChip.h"

#include <QBuffer>
#include <QtTest>

using namespace workbench;

class ChipDescriptionTest : public QObject
{
    Q_OBJECT

private slots:
    void shippedChipIsReadWithoutError();
    void shippedChipHasAFieldOfItsNameInEveryRampRegister();
    void everythingThatIsWrittenIsRead();
    void numbersAreReadAsWritten_data();
    void numbersAreReadAsWritten();
    void faultIsReportedWithItsLine_data();
    void faultIsReportedWithItsLine();
    void tooManyRegistersAreRefused();
    void tooLargeAFileIsRefused();
    void errorMayBeLeftOut();
    void cutOffFileNeverPasses();
};

namespace {

std::optional<ChipDescription> parse(QByteArray text, ChipDescriptionError *error = nullptr)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readChipDescription(&buffer, error);
}

const char registerA[] = R"(<register name="A" address="1" access="rw" reset="0" description="d">)"
                         "\n"
                         R"(<field identifier="A" name="a" low="8" width="8"/></register>)";

QByteArray chipOf(const QByteArray &content)
{
    return "<chip name=\"c\">\n" + content + "\n</chip>\n";
}

QByteArray registerWith(const QByteArray &address, const QByteArray &more)
{
    return "<register name=\"B\" address=\"" + address + "\" description=\"d\" " + more + "/>";
}

} // namespace

void ChipDescriptionTest::shippedChipIsReadWithoutError()
{
    ChipDescriptionError error;
    const auto chip = readShippedChip(&error);
    QVERIFY2(chip, qPrintable(QStringLiteral("line %1: %2").arg(error.line).arg(error.reason)));
    unsigned int before = 0;
    for (const RegisterDescription &entry : chip->registers) {
        QVERIFY2(entry.address >= before, qPrintable(entry.name));
        QVERIFY2(!entry.fields.isEmpty(), qPrintable(entry.name));
        before = entry.address;
    }
    QVERIFY(chip->findRegister(QStringLiteral("RAMPMODE")));
    QCOMPARE(chip->findRegister(QStringLiteral("nothing")), nullptr);
    QCOMPARE(chip->findRegister(0xFFFFu), nullptr);
}

void ChipDescriptionTest::shippedChipHasAFieldOfItsNameInEveryRampRegister()
{
    const auto chip = readShippedChip();
    QVERIFY(chip);
    const QStringList names{
        QStringLiteral("XACTUAL"), QStringLiteral("VACTUAL"), QStringLiteral("XTARGET"),
        QStringLiteral("VMAX"),    QStringLiteral("AMAX"),    QStringLiteral("DMAX"),
        QStringLiteral("V1"),      QStringLiteral("A1"),      QStringLiteral("D1"),
        QStringLiteral("V2"),      QStringLiteral("A2"),      QStringLiteral("D2")};
    for (const QString &prefix : {QStringLiteral("M0_"), QStringLiteral("M1_")}) {
        for (const QString &name : names) {
            const RegisterDescription *entry = chip->findRegister(prefix + name);
            QVERIFY2(entry, qPrintable(prefix + name));
            QCOMPARE(chip->findRegister(entry->address), entry);
            QCOMPARE(entry->fields.size(), 1);
            QCOMPARE(entry->fields.first().identifier, prefix + name);
            QCOMPARE(entry->fields.first().lowBit, 0);
            QVERIFY(entry->fields.first().isSigned);
            QCOMPARE(entry->fields.first().width, name.startsWith(QLatin1Char('X')) ? 24 : 32);
            const bool actual = name.endsWith(QLatin1String("ACTUAL"));
            QCOMPARE(entry->access == RegisterAccess::ReadOnly, actual);
            if (!name.contains(QLatin1Char('T')))
                QVERIFY2(entry->resetValue > 0, qPrintable(entry->name));
        }
    }
}

void ChipDescriptionTest::everythingThatIsWrittenIsRead()
{
    ChipDescriptionError error;
    const auto chip = parse(chipOf(R"(<!-- all of it -->
<register name="N" address="0xAb" access="w" reset="-3" unit="u/s" min="-5" max="7" description="Some
text"><field identifier="I" name="shown" low="3" width="29" signed="true"/>
<field identifier="J" name="other" low="0" width="3"/></register>)"),
                            &error);
    QVERIFY2(chip, qPrintable(error.reason));
    QCOMPARE(chip->name, QStringLiteral("c"));
    QCOMPARE(chip->registers.size(), 1);
    const RegisterDescription &entry = chip->registers.first();
    QCOMPARE(entry.name, QStringLiteral("N"));
    QCOMPARE(entry.address, 0xABu);
    QCOMPARE(entry.access, RegisterAccess::WriteOnly);
    QCOMPARE(entry.resetValue, -3);
    QCOMPARE(entry.unit, QStringLiteral("u/s"));
    QCOMPARE(entry.description, QStringLiteral("Some text"));
    QVERIFY(entry.range);
    QCOMPARE(entry.range->minimum, -5);
    QCOMPARE(entry.range->maximum, 7);
    QCOMPARE(entry.fields.size(), 2);
    QCOMPARE(entry.fields.at(0).identifier, QStringLiteral("I"));
    QCOMPARE(entry.fields.at(0).name, QStringLiteral("shown"));
    QCOMPARE(entry.fields.at(0).lowBit, 3);
    QCOMPARE(entry.fields.at(0).width, 29);
    QVERIFY(entry.fields.at(0).isSigned);
    QVERIFY(!entry.fields.at(1).isSigned);
}

void ChipDescriptionTest::numbersAreReadAsWritten_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("zero") << QByteArray("0") << 0;
    QTest::newRow("decimal with leading zeros") << QByteArray("0010") << 10;
    QTest::newRow("hexadecimal") << QByteArray("0x1f") << 31;
    QTest::newRow("lowest") << QByteArray("-2147483648") << std::numeric_limits<int>::min();
    QTest::newRow("highest signed") << QByteArray("2147483647") << std::numeric_limits<int>::max();
    QTest::newRow("highest unsigned") << QByteArray("4294967295") << -1;
    QTest::newRow("all bits") << QByteArray("0xFFFFFFFF") << -1;
}

void ChipDescriptionTest::numbersAreReadAsWritten()
{
    QFETCH(QByteArray, text);
    QFETCH(int, value);
    ChipDescriptionError error;
    const auto chip =
        parse(chipOf(registerWith("1", "access=\"r\" reset=\"" + text + "\"")), &error);
    QVERIFY2(chip, qPrintable(error.reason));
    QCOMPARE(chip->registers.first().resetValue, value);
}

void ChipDescriptionTest::faultIsReportedWithItsLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("reason");
    const auto add = [](const char *name, const QByteArray &text, int line, const char *reason) {
        QTest::newRow(name) << text << line << QString::fromLatin1(reason);
    };
    // Behind register A, which takes the lines 2 and 3.
    const auto addSecond = [&add](const char *name, const QByteArray &text, const char *reason) {
        add(name, chipOf(QByteArray(registerA) + "\n" + text), 4, reason);
    };
    const auto addField = [&add](const char *name, const QByteArray &text, const char *reason) {
        QByteArray all(registerA);
        all.replace("</register>", "\n" + text + "</register>");
        add(name, chipOf(all), 4, reason);
    };
    const QByteArray rest = "access=\"rw\" reset=\"0\"";

    add("empty file", "", 1, "end of document");
    add("not xml", "\n\nhello", 3, "Start tag expected");
    add("wrong root", "\n<chips name=\"c\"/>", 2, "root element is 'chips'");
    add("root without a name", "\n<chip/>", 2, "'name' is missing");
    add("unknown root attribute", "<chip name=\"c\" x=\"1\"/>", 1, "unknown attribute 'x'");
    add("no registers", "<chip name=\"c\">\n</chip>", 2, "no registers");
    add("document type", "<!DOCTYPE chip [\n<!ENTITY e \"x\">]>\n<chip/>", 2, "document type");
    add("something behind the root", chipOf(registerA) + "<more/>", 5, "Extra content");
    add("cut off", "<chip name=\"c\">\n" + QByteArray(registerA), 3, "Premature end");
    add("unclosed register",
        chipOf("<register name=\"A\" address=\"1\" access=\"r\" reset=\"0\" "
               "description=\"d\">"),
        3, "tag mismatch");
    add("text", chipOf("\nsome text"), 4, "unexpected text");
    addSecond("unknown element", "<registers/>", "unknown element 'registers'");
    addSecond("unknown attribute", registerWith("2", rest + " size=\"1\""), "attribute 'size'");
    addSecond("twice the same attribute", registerWith("2", rest + " reset=\"0\""), "reset");
    addSecond("missing name", "<register address=\"2\" description=\"d\" " + rest + "/>",
              "'name' is missing");
    addSecond("empty name", "<register name=\" \" address=\"2\" description=\"d\" " + rest + "/>",
              "'name' is empty");
    addSecond("missing description", "<register name=\"B\" address=\"2\" " + rest + "/>",
              "'description' is missing");
    addSecond("missing reset", registerWith("2", "access=\"r\""), "'reset' is missing");
    addSecond("duplicate name",
              "<register name=\"A\" address=\"2\" description=\"d\" " + rest + "/>",
              "duplicate register name 'A'");
    addSecond("duplicate address", registerWith("0x01", rest), "duplicate address 0x01");
    addSecond("negative address", registerWith("-1", rest), "'address' is not within 0 to 65535");
    addSecond("address too high", registerWith("0x10000", rest), "'address' is not within");
    addSecond("address with blanks", registerWith(" 2", rest), "'address' is not a number");
    addSecond("address with a plus", registerWith("+2", rest), "'address' is not a number");
    addSecond("hexadecimal without digits", registerWith("0x", rest), "'address' is not a number");
    addSecond("number of more than 64 bits", registerWith("99999999999999999999", rest),
              "'address' is not a number");
    addSecond("unknown access", registerWith("2", "access=\"wr\" reset=\"0\""),
              "unknown access 'wr'");
    addSecond("reset above 32 bit", registerWith("2", "access=\"r\" reset=\"4294967296\""),
              "'reset' is not within");
    addSecond("reset below 32 bit", registerWith("2", "access=\"r\" reset=\"-2147483649\""),
              "'reset' is not within");
    addSecond("reset is no number", registerWith("2", "access=\"r\" reset=\"1e3\""),
              "'reset' is not a number: '1e3'");
    addSecond("reset outside the range", registerWith("2", rest + " min=\"1\" max=\"2\""),
              "'reset' is outside");
    addSecond("reset above the range", registerWith("2", rest + " min=\"-2\" max=\"-1\""),
              "'reset' is outside");
    addSecond("range upside down", registerWith("2", rest + " min=\"1\" max=\"-1\""),
              "'min' is above 'max'");
    addSecond("half a range", registerWith("2", rest + " min=\"1\""), "needed together");
    addSecond("too long a text",
              registerWith("2", rest + " unit=\"" + QByteArray(1025, 'u') + "\""), "longer than");
    addField("field without identifier", "<field name=\"a\" low=\"0\" width=\"1\"/>",
             "'identifier' is missing");
    addField("field without name", "<field identifier=\"B\" low=\"0\" width=\"1\"/>",
             "'name' is missing");
    addField("duplicate identifier", "<field identifier=\"A\" name=\"a\" low=\"0\" width=\"1\"/>",
             "duplicate field identifier 'A'");
    addField("field of no width", "<field identifier=\"B\" name=\"a\" low=\"0\" width=\"0\"/>",
             "'width' is not within 1 to 32");
    addField("field below bit 0", "<field identifier=\"B\" name=\"a\" low=\"-1\" width=\"1\"/>",
             "'low' is not within 0 to 31");
    addField("field beyond bit 31", "<field identifier=\"B\" name=\"a\" low=\"20\" width=\"13\"/>",
             "beyond bit 31");
    addField("field overlapping from below",
             "<field identifier=\"B\" name=\"a\" low=\"0\" width=\"9\"/>", "overlaps 'A'");
    addField("field overlapping from above",
             "<field identifier=\"B\" name=\"a\" low=\"15\" width=\"2\"/>", "overlaps 'A'");
    addField("field neither signed nor not",
             "<field identifier=\"B\" name=\"a\" low=\"0\" width=\"8\" signed=\"yes\"/>",
             "'signed' is neither");
    addField("element in a field",
             "<field identifier=\"B\" name=\"a\" low=\"0\" width=\"8\"><field/></field>",
             "unknown element 'field'");
}

void ChipDescriptionTest::faultIsReportedWithItsLine()
{
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    QFETCH(QString, reason);
    ChipDescriptionError error;
    QVERIFY(!parse(text, &error));
    QVERIFY2(error.reason.contains(reason, Qt::CaseInsensitive), qPrintable(error.reason));
    QVERIFY(!error.reason.contains(QLatin1Char('\n')));
    QCOMPARE(error.line, line);
}

void ChipDescriptionTest::tooManyRegistersAreRefused()
{
    QByteArray content;
    for (int i = 0; i < 4097; ++i) {
        QByteArray entry = registerWith(QByteArray::number(i), "access=\"r\" reset=\"0\"");
        content += entry.replace("\"B\"", "\"B" + QByteArray::number(i) + "\"") + "\n";
    }
    ChipDescriptionError error;
    QVERIFY(!parse(chipOf(content), &error));
    QCOMPARE(error.reason, QStringLiteral("more than 4096 registers"));
    QCOMPARE(error.line, 4098);
    content.truncate(content.trimmed().lastIndexOf('\n'));
    QVERIFY(parse(chipOf(content)));
}

void ChipDescriptionTest::tooLargeAFileIsRefused()
{
    const QByteArray chip = chipOf(registerA);
    const int limit = 16 * 1024 * 1024;
    QVERIFY(parse(chip + QByteArray(limit - chip.size(), ' ')));
    ChipDescriptionError error;
    QVERIFY(!parse(chip + QByteArray(limit - chip.size() + 1, ' '), &error));
    QCOMPARE(error.reason, QStringLiteral("the file is larger than 16 MiB"));
}

void ChipDescriptionTest::errorMayBeLeftOut()
{
    QVERIFY(!parse("<chip", nullptr));
}

void ChipDescriptionTest::cutOffFileNeverPasses()
{
    const QByteArray chip = chipOf(registerA).trimmed();
    QVERIFY(parse(chip));
    for (int size = 0; size < chip.size(); ++size) {
        ChipDescriptionError error;
        QVERIFY2(!parse(chip.left(size), &error), qPrintable(QString::number(size)));
        QVERIFY(error.line >= 1);
        QVERIFY(!error.reason.isEmpty());
    }
}

QTEST_GUILESS_MAIN(ChipDescriptionTest)
#include "tst_chip_description.moc"
