#pragma once

#include "ToolRig.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

/// The entry of the start button's menu with that text; the test fails on a null.
inline QAction *menuEntry(const ToolRig &rig, const char *text)
{
    const QMenu *menu = rig.widget<QToolButton>("pbStart")->menu();
    const QList<QAction *> entries = menu ? menu->actions() : QList<QAction *>();
    for (QAction *entry : entries) {
        if (entry->text() == QLatin1String(text))
            return entry;
    }
    QTest::qFail(text, __FILE__, __LINE__);
    return nullptr;
}

inline QAbstractButton *standardButton(const QDialog *dialog,
                                       QDialogButtonBox::StandardButton which)
{
    const auto *box = dialog->findChild<QDialogButtonBox *>();
    return box ? box->button(which) : nullptr;
}

/// What goes on in a modal dialog goes on in the dialog's event loop. Calls `open`, which returns
/// when the dialog that it opens is closed, and in between `act` with that dialog. Closes the
/// dialog behind `act` if that has not. False when no such dialog has opened.
template <typename Dialog, typename Open, typename Act>
bool inModal(const Open &open, const Act &act)
{
    bool hasActed = false;
    QObject context;
    QTimer::singleShot(0, &context, [&] {
        const QPointer<Dialog> dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        hasActed = true;
        act(dialog.data());
        if (dialog && dialog->isVisible())
            dialog->close();
    });
    open();
    return hasActed;
}

/// Opens the editor as a person does and acts on it.
template <typename Act>
bool inEditor(const ToolRig &rig, const Act &act)
{
    QAction *edit = menuEntry(rig, "Edit flight path");
    return inModal<QDialog>([edit] { edit->trigger(); }, act);
}

/// Presses the editor's button for loading and acts on the file dialog.
template <typename Act>
bool inFileDialog(QDialog *editor, const Act &act)
{
    QAbstractButton *load = nullptr;
    const auto buttons = editor->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text() == QLatin1String("Load csv"))
            load = button;
    }
    if (!load)
        return false;
    return inModal<QFileDialog>([load] { QTest::mouseClick(load, Qt::LeftButton); }, act);
}

/// Loads a file into the editor's preview through the file dialog.
inline bool loadFile(QDialog *editor, const QString &fileName)
{
    return inFileDialog(editor, [&](QFileDialog *files) {
        auto *name = files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        name->setText(fileName);
        QTest::mouseClick(standardButton(files, QDialogButtonBox::Open), Qt::LeftButton);
    });
}

/// Makes that file the tool's flight path.
inline bool takePath(const ToolRig &rig, const QString &fileName)
{
    bool isLoaded = false;
    return inEditor(rig,
                    [&](QDialog *editor) {
                        isLoaded = loadFile(editor, fileName);
                        QTest::mouseClick(standardButton(editor, QDialogButtonBox::Ok),
                                          Qt::LeftButton);
                    }) &&
           isLoaded;
}

/// The test fails when the file cannot be written.
inline void writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/// Collects the debug lines of the host's low-level category, switched on or off, while it lives.
class LowLevelLines
{
public:
    explicit LowLevelLines(bool areOn)
    {
        QLoggingCategory::setFilterRules(QStringLiteral("workbench.lowlevel.debug=%1")
                                             .arg(QLatin1String(areOn ? "true" : "false")));
        collected().clear();
        next() = qInstallMessageHandler(collect);
    }
    ~LowLevelLines()
    {
        qInstallMessageHandler(next());
        QLoggingCategory::setFilterRules(QString());
    }
    LowLevelLines(const LowLevelLines &) = delete;
    LowLevelLines &operator=(const LowLevelLines &) = delete;

    static QStringList take()
    {
        const QStringList lines = collected();
        collected().clear();
        return lines;
    }

private:
    static QStringList &collected()
    {
        static QStringList lines;
        return lines;
    }
    static QtMessageHandler &next()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }
    static void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (type == QtDebugMsg && qstrcmp(context.category, "workbench.lowlevel") == 0)
            collected() << message;
        else
            next()(type, context, message);
    }
};
