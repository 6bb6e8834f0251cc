#include "FlightPathEditor.h"

#include "MouseClick.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QXYSeries>

namespace workbench {

namespace {

constexpr int stepPeriodMs = 10;
constexpr int appearTimeoutMs = 10000;
constexpr int acceptTimeoutMs = 2000;

QtCharts::QXYSeries *preview(const QDialog *editor)
{
    const auto *const view = editor->findChild<QtCharts::QChartView *>();
    return view ? qobject_cast<QtCharts::QXYSeries *>(view->chart()->series().value(0)) : nullptr;
}

QAbstractButton *buttonWithText(const QDialog *dialog, const QString &text)
{
    const auto buttons = dialog->findChildren<QAbstractButton *>();
    for (QAbstractButton *const button : buttons) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

QAbstractButton *standardButton(const QDialog *dialog, QDialogButtonBox::StandardButton which)
{
    const auto *const box = dialog->findChild<QDialogButtonBox *>();
    return box ? box->button(which) : nullptr;
}

} // namespace

FlightPathEditor::FlightPathEditor(const PanelDriver &panelDriver, const Clock &editorClock)
    : panel(panelDriver)
    , clock(editorClock)
{
}

QString FlightPathEditor::read(QVector<QPointF> *points)
{
    file.clear();
    result = points;
    open();
    return problem;
}

QString FlightPathEditor::load(const QString &fileName, QVector<QPointF> *points)
{
    file = QFileInfo(fileName).absoluteFilePath();
    result = points;
    open();
    return problem;
}

void FlightPathEditor::open()
{
    problem.clear();
    isOperated = false;
    isLoaded = false;
    result->clear();
    QAction *const edit = panel.menuEntry(QStringLiteral("Edit flight path"));
    if (!edit || !edit->isEnabled()) {
        fail(QStringLiteral("the start button's menu does not offer to edit the flight path"));
        return;
    }
    pendingSteps = std::make_unique<QObject>();
    attempt([this] { return operateEditor(); }, appearTimeoutMs);
    edit->trigger();
    pendingSteps.reset();
    if (!isOperated)
        fail(QStringLiteral("the dialog for the flight path does not open"));
}

/// Tries a step again and again, each time out of the event loop, until it says that it is done.
void FlightPathEditor::attempt(const Step &step, qint64 timeoutMs)
{
    attemptAgain(step, timeoutMs, Stopwatch(clock));
}

void FlightPathEditor::attemptAgain(const Step &step, qint64 timeoutMs, const Stopwatch &elapsed)
{
    // A timer of its own each time: one whose handler still runs would not fire in the event loop
    // of a dialog that the handler has opened.
    QTimer::singleShot(stepPeriodMs, pendingSteps.get(), [this, step, timeoutMs, elapsed] {
        if (step())
            return;
        if (elapsed.hasReached(timeoutMs))
            giveUp();
        else
            attemptAgain(step, timeoutMs, elapsed);
    });
}

/// False while the dialog is not there.
bool FlightPathEditor::operateEditor()
{
    const QPointer<QDialog> editor = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!editor || editor->objectName() != QLatin1String("dialogAllowedPluginsInfo"))
        return false;
    isOperated = true;
    if (!preview(editor)) {
        fail(QStringLiteral("the dialog for the flight path shows none"));
    } else if (file.isEmpty()) {
        *result = preview(editor)->pointsVector();
    } else {
        loadFile(editor);
    }
    if (!editor)
        return true;
    const bool isAccepted = isLoaded && !result->isEmpty();
    const auto which = isAccepted ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel;
    if (!press(standardButton(editor, which)))
        editor->reject();
    return true;
}

void FlightPathEditor::loadFile(QDialog *dialog)
{
    const QPointer<QDialog> editor(dialog);
    QtCharts::QXYSeries *const series = preview(editor);
    const auto noteLoad = [this] { isLoaded = true; };
    connect(series, &QtCharts::QXYSeries::pointsReplaced, this, noteLoad);
    connect(series, &QtCharts::QXYSeries::pointsRemoved, this, noteLoad);
    attempt([this] { return operateFileDialog(); }, appearTimeoutMs);
    if (!press(buttonWithText(editor, QStringLiteral("Load csv"))))
        fail(QStringLiteral("the dialog for the flight path does not offer to load a file"));
    else if (!isLoaded)
        fail(QStringLiteral("the panel's file dialog does not take it"));
    else if (editor)
        *result = preview(editor)->pointsVector();
}

/// False while the dialog is not there.
bool FlightPathEditor::operateFileDialog()
{
    const QPointer<QFileDialog> dialog =
        qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
    if (!dialog)
        return false;
    auto *const name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    if (name)
        name->setText(file);
    // What the dialog does not take it complains about in a box that somebody has to close.
    attempt([dialog] { return !dialog || !dialog->isVisible(); }, acceptTimeoutMs);
    if (!name || !press(standardButton(dialog, QDialogButtonBox::Open)))
        giveUp();
    return true;
}

/// Closes all dialogs, the one on top first.
void FlightPathEditor::giveUp()
{
    auto *const top = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!top)
        return;
    top->reject();
    QTimer::singleShot(stepPeriodMs, pendingSteps.get(), [this] { giveUp(); });
}

void FlightPathEditor::fail(const QString &reason)
{
    if (problem.isEmpty())
        problem = reason;
}

} // namespace workbench
