#include "Targets.h"

#include <QDir>
#include <QFile>
#include <QtTest>

// Replays the files that the fuzzers begin with, among them all that they ever found.

namespace {

void addFiles(const QString &target)
{
    QTest::addColumn<QString>("path");

    const QDir folder(QStringLiteral(CORPORA_FOLDER "/") + target);
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    QVERIFY2(!names.isEmpty(), qPrintable(folder.path()));
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// A check finds the same in a file and in every beginning of it.
void replay(QString (*check)(const QByteArray &), const QString &path)
{
    const QByteArray bytes = contentOf(path);
    for (int size = bytes.size(); size >= 0; size -= qMax(1, bytes.size() / 64)) {
        const QString fault = check(bytes.left(size));
        QVERIFY2(fault.isEmpty(),
                 qPrintable(QStringLiteral("first %1 bytes: %2").arg(size).arg(fault)));
    }
}

} // namespace

class FuzzCorporaTest : public QObject
{
    Q_OBJECT

private slots:
    void flightPathKeepsItsPromises_data() { addFiles(QStringLiteral("flight_path")); }
    void flightPathKeepsItsPromises();
    void chipDescriptionKeepsItsPromises_data() { addFiles(QStringLiteral("chip_description")); }
    void chipDescriptionKeepsItsPromises();
    void tapeKeepsItsPromises_data() { addFiles(QStringLiteral("tape")); }
    void tapeKeepsItsPromises();
    void faultMustLieWithinTheFileAndFillOneLine_data();
    void faultMustLieWithinTheFileAndFillOneLine();
};

void FuzzCorporaTest::flightPathKeepsItsPromises()
{
    QFETCH(QString, path);
    replay(fuzz::checkFlightPath, path);
}

void FuzzCorporaTest::chipDescriptionKeepsItsPromises()
{
    QFETCH(QString, path);
    replay(fuzz::checkChipDescription, path);
}

void FuzzCorporaTest::tapeKeepsItsPromises()
{
    QFETCH(QString, path);
    replay(fuzz::checkTape, path);
}

void FuzzCorporaTest::faultMustLieWithinTheFileAndFillOneLine_data()
{
    QTest::addColumn<qint64>("line");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("isFine");

    const QString reason = QStringLiteral("unknown element 'a'");
    QTest::newRow("first line") << qint64(1) << reason << true;
    QTest::newRow("behind the last line break") << qint64(3) << reason << true;
    QTest::newRow("before the file") << qint64(0) << reason << false;
    QTest::newRow("behind the file") << qint64(4) << reason << false;
    QTest::newRow("no reason") << qint64(1) << QString() << false;
    QTest::newRow("two lines") << qint64(1) << QStringLiteral("a\nb") << false;
    QTest::newRow("control character") << qint64(1) << QStringLiteral("a\x1b[2J") << false;
    QTest::newRow("full stop") << qint64(1) << QStringLiteral("no.") << false;
}

void FuzzCorporaTest::faultMustLieWithinTheFileAndFillOneLine()
{
    QFETCH(qint64, line);
    QFETCH(QString, reason);
    QFETCH(bool, isFine);
    QCOMPARE(fuzz::checkRefusal("one\ntwo\n", line, reason).isEmpty(), isFine);
}

QTEST_GUILESS_MAIN(FuzzCorporaTest)
#include "tst_fuzz_corpora.moc"
