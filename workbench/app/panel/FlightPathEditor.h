#pragma once

#include "Clock.h"
#include "PanelDriver.h"

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QVector>

#include <functional>
#include <memory>

class QDialog;

namespace workbench {

/// Operates the dialog behind "Edit flight path" in the panel's menu. The dialog is modal, with an
/// event loop of its own, and so is the file dialog that it opens: both are operated by steps that
/// wait in these loops, while the calls here return when the dialogs are closed. File dialogs must
/// be Qt's own, see Qt::AA_DontUseNativeDialogs. GUI thread.
class FlightPathEditor : public QObject
{
    Q_OBJECT

public:
    /// The clock is not owned and must go with the event loop's.
    FlightPathEditor(const PanelDriver &panel, const Clock &clock);

    /// The panel's flight path, as the dialog shows it; the dialog is cancelled. Returns an empty
    /// text, or one line about what failed.
    QString read(QVector<QPointF> *points);

    /// Loads a file with the dialog and accepts it; a file without a point is not accepted.
    /// Returns like read(), the panel then has the path that it had.
    QString load(const QString &fileName, QVector<QPointF> *points);

private:
    using Step = std::function<bool()>;

    void open();
    void attempt(const Step &step, qint64 timeoutMs);
    void attemptAgain(const Step &step, qint64 timeoutMs, const Stopwatch &elapsed);
    bool operateEditor();
    bool operateFileDialog();
    void loadFile(QDialog *editor);
    void giveUp();
    void fail(const QString &reason);

    PanelDriver panel;
    const Clock &clock;
    QString file; ///< absolute; empty to load none
    QVector<QPointF> *result = nullptr;
    QString problem;
    bool isOperated = false;
    bool isLoaded = false;
    std::unique_ptr<QObject> pendingSteps; ///< their context: none outlives the dialog
};

} // namespace workbench
