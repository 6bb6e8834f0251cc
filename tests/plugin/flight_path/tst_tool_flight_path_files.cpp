#include "FlightEditorRig.h"

#include "AppSettings.h"

#include <QDir>

#include <functional>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using Replacement = std::function<void(const QString &)>;

/// While one exists, the process has no more rights to files than any user; only root has to give
/// rights up for that.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (before == 0)
            isChanged = seteuid(nobody) == 0;
    }
    ~OrdinaryUser()
    {
        if (isChanged && seteuid(before) != 0)
            qFatal("the test's own user is lost");
    }
    Q_DISABLE_COPY(OrdinaryUser)

private:
    static constexpr uid_t nobody = 65534;
    const uid_t before = geteuid();
    bool isChanged = false;
};

} // namespace

Q_DECLARE_METATYPE(Replacement)

class ToolFlightPathFilesTest : public FlightEditorRig
{
    Q_OBJECT

private slots:
    void fileDialogIsSetUpForPaths();
    void fileDialogBeginsInTheRememberedFolder();
    void folderOfTheFileIsRemembered();
    void currentFolderIsForgotten();
    void cancelledFileDialogChangesNothing();
    void lineBreaksOfOtherSystemsAreTaken();
    void unreadableFileChangesNothing_data();
    void unreadableFileChangesNothing();
    void toolDeletedWithTheFileDialogOpenIsSurvived();
};

void ToolFlightPathFilesTest::fileDialogIsSetUpForPaths()
{
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            QCOMPARE(files->parent(), rig.tool());
            QCOMPARE(files->windowTitle(), QStringLiteral("Open plots"));
            QCOMPARE(files->nameFilters(), QStringList{QStringLiteral("*.csv *.txt")});
            QCOMPARE(files->acceptMode(), QFileDialog::AcceptOpen);
            QCOMPARE(files->fileMode(), QFileDialog::ExistingFile);
        }));
    }));
}

void ToolFlightPathFilesTest::fileDialogBeginsInTheRememberedFolder()
{
    AppSettings().setValue(folderKey, folder->path());
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            QCOMPARE(files->directory().absolutePath(), QDir(folder->path()).absolutePath());
        }));
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathFilesTest::folderOfTheFileIsRemembered()
{
    writeFile(path("p.csv"), "P\n1;2\n");
    PollRig rig;
    // As soon as it is loaded, even when the dialog is cancelled then.
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathFilesTest::currentFolderIsForgotten()
{
    writeFile(path("p.csv"), "P\n1;2\n");
    AppSettings().setValue(folderKey, QStringLiteral("/elsewhere"));
    QVERIFY(QDir::setCurrent(folder->path()));
    PollRig rig;
    QVERIFY(takePath(rig, path("p.csv")));
    QVERIFY(!AppSettings().contains(folderKey));
}

void ToolFlightPathFilesTest::cancelledFileDialogChangesNothing()
{
    AppSettings().setValue(folderKey, folder->path());
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        const Preview before(editor);
        QVERIFY(inFileDialog(editor, [](QFileDialog *files) {
            QTest::mouseClick(standardButton(files, QDialogButtonBox::Cancel), Qt::LeftButton);
        }));
        QVERIFY(editor->isVisible());
        QVERIFY(Preview(editor) == before);
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

void ToolFlightPathFilesTest::lineBreaksOfOtherSystemsAreTaken()
{
    writeFile(path("p.csv"), "Title\r\n1;2;3\r\n4;5\r\n");
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(loadFile(editor, path("p.csv")));
        const Preview loaded(editor);
        QCOMPARE(loaded.title, QStringLiteral("Title\n"));
        QCOMPARE(loaded.points, (QVector<QPointF>{{1, 2}, {4, 5}}));
    }));
}

void ToolFlightPathFilesTest::unreadableFileChangesNothing_data()
{
    QTest::addColumn<Replacement>("replace");

    // The dialog is content with the file, and then something else takes its place.
    QTest::newRow("a folder") << Replacement(
        [](const QString &name) { QVERIFY(QFile::remove(name) && QDir().mkdir(name)); });
    QTest::newRow("nothing") << Replacement(
        [](const QString &name) { QVERIFY(QFile::remove(name)); });
    QTest::newRow("a pipe that nobody writes to") << Replacement([](const QString &name) {
        QVERIFY(QFile::remove(name) && mkfifo(qPrintable(name), 0) == 0);
        QVERIFY(QFile::setPermissions(name, QFileDevice::Permissions(0x6666)));
    });
    QTest::newRow("a device without end") << Replacement([](const QString &name) {
        QVERIFY(QFile::remove(name) && QFile::link(QStringLiteral("/dev/zero"), name));
    });
    QTest::newRow("a file of somebody else's") << Replacement(
        [](const QString &name) { QVERIFY(QFile::setPermissions(name, QFileDevice::WriteOwner)); });
}

void ToolFlightPathFilesTest::unreadableFileChangesNothing()
{
    QFETCH(Replacement, replace);
    writeFile(path("p.csv"), "P\n1;2\n");
    AppSettings().setValue(folderKey, QStringLiteral("/elsewhere"));
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        const Preview before(editor);
        std::optional<OrdinaryUser> user;
        QVERIFY(inFileDialog(editor, [&](QFileDialog *files) {
            files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path("p.csv"));
            connect(files, &QFileDialog::fileSelected, editor, [&] {
                replace(path("p.csv"));
                // Others may look into the folder.
                QVERIFY(QFile::setPermissions(folder->path(), QFileDevice::Permissions(0x7755)));
                user.emplace();
            });
            QTest::mouseClick(standardButton(files, QDialogButtonBox::Open), Qt::LeftButton);
        }));
        QVERIFY(Preview(editor) == before);
    }));
    QCOMPARE(AppSettings().value(folderKey).toString(), QStringLiteral("/elsewhere"));
}

void ToolFlightPathFilesTest::toolDeletedWithTheFileDialogOpenIsSurvived()
{
    AppSettings().setValue(folderKey, folder->path());
    PollRig rig;
    QVERIFY(inEditor(rig, [&](QDialog *editor) {
        QVERIFY(inFileDialog(editor, [&](QFileDialog *) { rig.deleteTool(); }));
    }));
    QVERIFY(!rig.tool());
    QCOMPARE(AppSettings().value(folderKey).toString(), folder->path());
}

QTEST_MAIN(ToolFlightPathFilesTest)
#include "tst_tool_flight_path_files.moc"
