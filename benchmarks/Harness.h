#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

class QWidget;

/// What every benchmark shares: taking turns, medians, Markdown tables.
namespace harness {

/// What one step took, in milliseconds.
struct Cost
{
    double model = 0; ///< until the calls returned
    double paint = 0; ///< until everything was on the surface

    double total() const { return model + paint; }
};

struct Contender
{
    QString name;
    /// One step; what it does outside the time that it reports is not counted. An empty one stands
    /// for a contender that was not built in, and gets no steps.
    std::function<Cost()> step;
};

/// Medians over the steps of one contender, each column by itself.
struct Result
{
    QString name;
    Cost median;
    double medianTotal = 0;
    int steps = 0;
};

/// How many steps each contender gets: as many as fit the time, within the bounds.
struct Effort
{
    int fewest = 5;
    int most = 40;
    qint64 budgetMs = 15000;
};

/// Lets all contenders make a step, again and again, so that whatever drifts in the machine hits
/// them alike. The first round warms up and is not counted.
QVector<Result> takeTurns(const QVector<Contender> &contenders, const Effort &effort);

double median(QVector<double> values);

/// Milliseconds that `work` takes.
template <typename Work>
double millisecondsOf(const Work &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) * 1e-6;
}

/// Handles everything that has been posted, layout and painting included. Fires no timer and takes
/// no input, so nothing else happens meanwhile.
double paintPosted();

/// Counts the paint events of a widget while both live.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget *painted);

    int count() const { return events; }

    /// `redraw`, where something has to be called, and paintPosted(). Ends the program when that
    /// did not paint the widget.
    double paint(const std::function<void()> &redraw = {});

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int events = 0;
};

/// A Markdown table on the standard output, its columns padded.
class Table
{
public:
    explicit Table(const QStringList &header);

    void addRow(const QStringList &cells);
    void print() const;

private:
    QVector<QStringList> rows;
};

/// Three significant digits, as decimal number.
QString number(double value);
/// "2.5 x".
QString ratio(double value, double reference);
/// With separators between thousands.
QString count(qint64 value);

/// A benchmark program: to be made after the application. Prints the heading with what it ran on.
class Program
{
public:
    explicit Program(const QString &title);

    /// `--quick`: a look at whether it works; the numbers mean little.
    bool isQuick() const { return quick; }
    Effort effort(int most = 40) const;

    static void note(const QString &text);

private:
    bool quick = false;
};

/// Chooses the headless platform unless another is asked for. To be called before the application
/// is made.
void beginHeadless();

} // namespace harness
