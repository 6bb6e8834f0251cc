#include "PanelPicture.h"
#include "RecordWriter.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <csignal>
#include <sys/resource.h>

using workbench::RecordWriter;

namespace {

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void fill(const QString &fileName, const QByteArray &text)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

/// No file of this process grows beyond a few bytes while it exists, as on a full disk.
class FullDisk
{
public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit tight = before;
        tight.rlim_cur = 64;
        setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);
    }

private:
    rlimit before{};
};

} // namespace

class AppRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void writesAHeaderAndALineForEachSample();
    void isTheSameInEveryLocale();
    void appearsWithTheFinishOnly();
    void abortLeavesNothing();
    void abortLeavesAnExistingFileAlone();
    void refusesWhatIsNoOrdinaryFile_data();
    void refusesWhatIsNoOrdinaryFile();
    void fullDiskLeavesAnExistingFileAlone();
    void writesNothingWithoutABegin();
    void pictureHasTwiceThePanelsSize();
    void pictureRefusesAFolderThatDoesNotExist();

private:
    QString path(const char *name) const { return folder->filePath(QLatin1String(name)); }
    QStringList files() const { return QDir(folder->path()).entryList(QDir::Files); }

    QScopedPointer<QTemporaryDir> folder;
};

void AppRecordTest::init()
{
    folder.reset(new QTemporaryDir);
    QVERIFY(folder->isValid());
}

void AppRecordTest::cleanup()
{
    folder.reset();
    QLocale::setDefault(QLocale::c());
}

void AppRecordTest::writesAHeaderAndALineForEachSample()
{
    RecordWriter writer;
    QCOMPARE(writer.begin(path("r.csv")), QString());
    writer.append({2000000000, {0, 0}});
    writer.append({2001234567, {-8388608, 8388607}});
    QCOMPARE(writer.finish(), QString());
    QCOMPARE(contents(path("r.csv")), QByteArray("time (s),axis 0 (units),axis 1 (units)\n"
                                                 "0.000000,0,0\n"
                                                 "0.001235,-8388608,8388607\n"));
    QCOMPARE(writer.sampleCount(), qint64(2));
}

void AppRecordTest::isTheSameInEveryLocale()
{
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    RecordWriter writer;
    QCOMPARE(writer.begin(path("r.csv")), QString());
    writer.append({0, {0, 0}});
    writer.append({1500000000, {123456, -2}});
    QCOMPARE(writer.finish(), QString());
    QVERIFY(contents(path("r.csv")).endsWith("\n1.500000,123456,-2\n"));
}

void AppRecordTest::appearsWithTheFinishOnly()
{
    RecordWriter writer;
    QCOMPARE(writer.begin(path("r.csv")), QString());
    writer.append({0, {1, 2}});
    QVERIFY(!QFile::exists(path("r.csv")));
    QCOMPARE(writer.finish(), QString());
    QCOMPARE(files(), QStringList{QStringLiteral("r.csv")});
}

void AppRecordTest::abortLeavesNothing()
{
    {
        RecordWriter writer;
        QCOMPARE(writer.begin(path("r.csv")), QString());
        for (int i = 0; i < 100000; ++i)
            writer.append({i, {i, i}});
    }
    QCOMPARE(files(), QStringList());
}

void AppRecordTest::abortLeavesAnExistingFileAlone()
{
    fill(path("r.csv"), "from before");
    {
        RecordWriter writer;
        QCOMPARE(writer.begin(path("r.csv")), QString());
        writer.append({0, {1, 2}});
    }
    QCOMPARE(contents(path("r.csv")), QByteArray("from before"));
    QCOMPARE(files(), QStringList{QStringLiteral("r.csv")});
}

void AppRecordTest::refusesWhatIsNoOrdinaryFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("folder") << QDir::tempPath() << QStringLiteral("is a folder");
    QTest::newRow("in no folder") << QStringLiteral("/no/such/folder/r.csv")
                                  << QStringLiteral("its folder does not exist");
    QTest::newRow("device") << QStringLiteral("/dev/null")
                            << QStringLiteral("is not an ordinary file");
}

void AppRecordTest::refusesWhatIsNoOrdinaryFile()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    RecordWriter writer;
    QCOMPARE(writer.begin(name), QStringLiteral("%1: %2").arg(name, reason));
}

void AppRecordTest::fullDiskLeavesAnExistingFileAlone()
{
    fill(path("r.csv"), "from before");
    QString fault;
    {
        RecordWriter writer;
        QCOMPARE(writer.begin(path("r.csv")), QString());
        for (int i = 0; i < 100; ++i)
            writer.append({i, {i, i}});
        const FullDisk disk;
        fault = writer.finish();
    }
    QVERIFY2(fault.startsWith(path("r.csv")), qPrintable(fault));
    QVERIFY(!fault.contains(QLatin1Char('\n')));
    QCOMPARE(contents(path("r.csv")), QByteArray("from before"));
    QCOMPARE(files(), QStringList{QStringLiteral("r.csv")});
}

void AppRecordTest::writesNothingWithoutABegin()
{
    RecordWriter writer;
    writer.append({0, {1, 2}});
    QCOMPARE(writer.finish(), QString());
    QCOMPARE(writer.sampleCount(), qint64(0));
}

void AppRecordTest::pictureHasTwiceThePanelsSize()
{
    QWidget panel;
    panel.resize(120, 80);
    panel.setAutoFillBackground(true);
    panel.setPalette(QPalette(Qt::darkGreen));
    const QColor expected = panel.palette().color(QPalette::Window);
    QCOMPARE(workbench::savePicture(&panel, path("p.png")), QString());
    const QImage image(path("p.png"));
    QCOMPARE(image.size(), QSize(240, 160));
    QCOMPARE(image.pixelColor(200, 140), expected);
}

void AppRecordTest::pictureRefusesAFolderThatDoesNotExist()
{
    QWidget panel;
    const QString name = QStringLiteral("/no/such/folder/p.png");
    QCOMPARE(workbench::savePicture(&panel, name),
             name + QStringLiteral(": its folder does not exist"));
}

QTEST_MAIN(AppRecordTest)
#include "tst_app_record.moc"
