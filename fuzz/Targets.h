#pragma once

#include <QByteArray>
#include <QString>

/// What is run over arbitrary bytes, by the fuzzers and, over the collected files, by a test. Each
/// reads `bytes` as a file of its kind and returns what is wrong with the result; empty when
/// everything that the reader promises holds.
namespace fuzz {

QString checkFlightPath(const QByteArray &bytes);
QString checkChipDescription(const QByteArray &bytes);
QString checkTape(const QByteArray &bytes);

/// What a message on a refused file must be: a line within the file, from 1, and one line of text.
QString checkRefusal(const QByteArray &bytes, qint64 line, const QString &reason);

} // namespace fuzz
