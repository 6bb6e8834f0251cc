#include "TapeWords.h"

#include <algorithm>
#include <cctype>

namespace workbench {

namespace {

constexpr qint64 nsPerSecond = 1000000000;
constexpr int secondsDecimals = 9;
constexpr int maximumSecondsDigits = 9;
constexpr int shownLength = 40;
constexpr int decimal = 10;
constexpr int hexadecimal = 16;

bool isHexadecimalDigit(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

bool isDecimalDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Qt's conversions take signs, blanks and a further "0x" as well; a tape has none of them there.
bool areDigits(const QByteArray &text, bool (*isDigit)(char) = isDecimalDigit)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isDigit);
}

} // namespace

QByteArray TapeWords::take(const char *what)
{
    if (next < words.size())
        return words.at(next++);
    fail(QStringLiteral("the line ends where %1 should be").arg(QLatin1String(what)));
    return QByteArray();
}

bool TapeWords::takeIf(const char *word)
{
    const bool isNext = next < words.size() && words.at(next) == word;
    next += isNext ? 1 : 0;
    return isNext;
}

void TapeWords::expect(const char *word)
{
    const QByteArray found = take(word);
    if (found != word)
        refuse(found, word);
}

void TapeWords::expectEnd()
{
    if (next < words.size())
        refuse(words.at(next), "the end of the line");
}

qint64 TapeWords::nanoseconds(const char *what)
{
    const QByteArray word = take(what);
    const int point = word.indexOf('.');
    const QByteArray whole = word.left(qMax(point, 0));
    const QByteArray part = word.mid(point + 1);
    if (areDigits(whole) && areDigits(part) && whole.size() <= maximumSecondsDigits &&
        part.size() == secondsDecimals)
        return whole.toLongLong() * nsPerSecond + part.toLongLong();
    refuse(word, what);
    return 0;
}

unsigned int TapeWords::hex(unsigned int maximum, const char *what)
{
    const QByteArray word = take(what);
    bool isNumber = false;
    const QByteArray digits = word.mid(2);
    const unsigned int value = digits.toUInt(&isNumber, hexadecimal);
    if (!word.startsWith("0x") || !areDigits(digits, isHexadecimalDigit) || !isNumber ||
        value > maximum)
        refuse(word, what);
    return value;
}

unsigned char TapeWords::byte(const char *what)
{
    return static_cast<unsigned char>(hex(0xFF, what));
}

int TapeWords::number(const char *what)
{
    const QByteArray word = take(what);
    bool isNumber = false;
    const int value = word.toInt(&isNumber, decimal);
    if (!areDigits(word.startsWith('-') ? word.mid(1) : word) || !isNumber)
        refuse(word, what);
    return value;
}

unsigned char TapeWords::motor()
{
    const QByteArray word = take("a motor");
    bool isNumber = false;
    const QByteArray digits = word.mid(1);
    const unsigned int value = digits.toUInt(&isNumber, decimal);
    if (!word.startsWith('m') || !areDigits(digits) || !isNumber || value > 0xFF)
        refuse(word, "a motor such as m0");
    return static_cast<unsigned char>(value);
}

void TapeWords::refuse(const QByteArray &word, const char *wanted)
{
    fail(QStringLiteral("\"%1\" where %2 should be").arg(shown(word), QLatin1String(wanted)));
}

QString TapeWords::shown(const QByteArray &text)
{
    QString plain = QString::fromLatin1(text.left(shownLength));
    for (QChar &character : plain) {
        if (!character.isPrint())
            character = QLatin1Char('?');
    }
    return plain.simplified();
}

void TapeWords::fail(const QString &reason)
{
    if (firstError.isEmpty())
        firstError = reason;
}

} // namespace workbench
