#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace workbench {

/// The words of one line of a tape, taken from the left. The first error found is kept; what is
/// taken after that is without meaning, so a caller takes everything and then looks at error().
/// `what` says what is wanted, for the messages.
class TapeWords
{
public:
    explicit TapeWords(const QByteArray &line)
        : words(line.split(' '))
    {
    }

    /// One line; empty when there is no error.
    QString error() const { return firstError; }

    QByteArray take(const char *what);
    bool takeIf(const char *word);
    void expect(const char *word);
    void expectEnd();

    qint64 nanoseconds(const char *what); ///< out of seconds with nine decimals
    unsigned int hex(unsigned int maximum, const char *what);
    unsigned char byte(const char *what);
    int number(const char *what);
    unsigned char motor();

    void refuse(const QByteArray &word, const char *wanted);

    /// A text from a file, made fit for a one-line message.
    static QString shown(const QByteArray &text);

private:
    void fail(const QString &reason);

    QList<QByteArray> words;
    int next = 0;
    QString firstError;
};

} // namespace workbench
