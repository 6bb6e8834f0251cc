#include "RegisterNumber.h"

#include <QTest>

class RegisterNumberTest : public QObject
{
    Q_OBJECT

private slots:
    void entriesAreDecimalOrHexadecimal_data();
    void entriesAreDecimalOrHexadecimal();
};

void RegisterNumberTest::entriesAreDecimalOrHexadecimal_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("word"); // empty when refused
    const auto row = [](const char *name, int width, bool isSigned, const char *entered,
                        const char *word) {
        QTest::newRow(name) << width << isSigned << QString::fromLatin1(entered)
                            << QString::fromLatin1(word);
    };
    row("decimal", 8, false, "255", "255");
    row("spaces around", 8, false, "  7 ", "7");
    row("negative", 8, true, "-128", "-128");
    row("negative bits", 8, true, "0xFF", "-1");
    row("capital X", 8, true, "0X7f", "127");
    row("32 bits", 32, false, "4294967295", "-1");
    row("32 bits in hexadecimal", 32, false, "0xFFFFFFFF", "-1");
    row("above the bits", 8, false, "256", "");
    row("above the bits in hexadecimal", 8, true, "0x100", "");
    row("far above", 32, false, "0xFFFFFFFFFFFFFFFF", "");
    row("below", 8, true, "-129", "");
    row("negative for unsigned", 8, false, "-1", "");
    row("nothing", 8, false, "", "");
    row("no digits", 8, false, "0x", "");
    row("a sign behind 0x", 8, true, "0x-1", "");
    row("a word", 8, false, "ten", "");
    row("digits and a word", 8, false, "12x", "");
    row("fraction", 8, false, "1.5", "");
}

void RegisterNumberTest::entriesAreDecimalOrHexadecimal()
{
    QFETCH(int, width);
    QFETCH(bool, isSigned);
    QFETCH(QString, entered);
    QFETCH(QString, word);
    const qint64 values = qint64(1) << width;
    const tools::Entry entry = tools::parseEntry(
        {width, isSigned, isSigned ? -values / 2 : 0, (isSigned ? values / 2 : values) - 1},
        entered);
    QCOMPARE(entry.word ? QString::number(*entry.word) : QString(), word);
    QCOMPARE(entry.refusal.isEmpty(), !word.isEmpty());
}

QTEST_APPLESS_MAIN(RegisterNumberTest)
#include "tst_register_number.moc"
