#include "ProgramRig.h"

#include <unistd.h>

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// For root no folder is read-only; these take that privilege, or root itself, from a program.
QVector<QStringList> starters()
{
    if (geteuid() != 0)
        return {QStringList()};
    return {
        {text("setpriv"), text("--bounding-set=-dac_override,-dac_read_search,-fowner")},
        {text("setpriv"), text("--reuid=65534"), text("--regid=65534"), text("--clear-groups")}};
}

bool succeeds(const QStringList &command, const QString &folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(command.constFirst(), command.mid(1));
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace

/// Files that cannot be written because of the permissions of where they are to be.
class AppReadOnlyTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void readOnlyPlacesAreRefused_data();
    void readOnlyPlacesAreRefused();

private:
    QString findStarter();

    std::unique_ptr<ProgramRig> rig;
};

void AppReadOnlyTest::init()
{
    rig = std::make_unique<ProgramRig>();
    QVERIFY(rig->isValid());
    QVERIFY(QFile::setPermissions(rig->path(), QFile::Permissions(0x7755)));
    QVERIFY(QDir(rig->path()).mkdir(text("locked")));
    rig->write(text("locked/precious"), "precious");
    rig->write(text("precious"), "precious");
    const QFile::Permissions readable(0x4444);
    QVERIFY(QFile::setPermissions(rig->filePath(text("precious")), readable));
    QVERIFY(QFile::setPermissions(rig->filePath(text("locked")),
                                  readable | QFile::Permissions(0x1111)));
    const QString fault = findStarter();
    if (!fault.isEmpty())
        QSKIP(qPrintable(fault));
}

/// Returns why the program cannot be started without a privilege over permissions.
QString AppReadOnlyTest::findStarter()
{
    const QString folder = rig->path();
    for (const QStringList &starter : starters()) {
        const bool runs =
            succeeds(starter + QStringList{text(WORKBENCH_PROGRAM), text("--version")}, folder);
        if (runs && !succeeds(starter + QStringList{text("touch"), text("locked/a")}, folder)) {
            rig->starter = starter;
            return QString();
        }
    }
    return text(
        "permissions do not hold here: root, and no setpriv that could take its privileges");
}

void AppReadOnlyTest::cleanup()
{
    QFile::setPermissions(rig->filePath(text("locked")), QFile::Permissions(0x7755));
    rig.reset();
}

void AppReadOnlyTest::readOnlyPlacesAreRefused_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("isUnattended");
    for (const char *option : {"--record", "--tape"}) {
        const auto row = [option](const char *what, const char *name, const char *reason) {
            QTest::addRow("%s %s", option, what)
                << text(option) << text(name) << text(reason) << true;
        };
        row("in a folder", "locked/new", "Permission denied");
        row("over a file in a folder", "locked/precious", "Permission denied");
        row("over a file", "precious", "Existing file precious is not writable");
    }
    QTest::newRow("--picture") << text("--picture") << text("locked/new.png")
                               << text("Permission denied") << true;
    QTest::newRow("--tape in a window")
        << text("--tape") << text("locked/new") << text("Permission denied") << false;
}

void AppReadOnlyTest::readOnlyPlacesAreRefused()
{
    QFETCH(QString, option);
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QFETCH(bool, isUnattended);
    QStringList arguments{option, name};
    if (isUnattended)
        arguments << text("--unattended") << text("--target") << text("30,20");
    const auto ending = rig->run(arguments);
    QCOMPARE(ending.exitCode, 1);
    QCOMPARE(ending.output, QStringList());
    QCOMPARE(ending.complaints, QStringList{text("workbench: %1: %2").arg(name, reason)});
    for (const char *folder : {".", "locked"}) {
        const QDir dir(rig->filePath(text(folder)));
        QCOMPARE(dir.entryList(QDir::Files | QDir::Hidden), QStringList{text("precious")});
        QFile precious(dir.filePath(text("precious")));
        QVERIFY(precious.open(QIODevice::ReadOnly));
        QCOMPARE(precious.readAll(), QByteArray("precious"));
    }
}

QTEST_GUILESS_MAIN(AppReadOnlyTest)
#include "tst_app_read_only.moc"
