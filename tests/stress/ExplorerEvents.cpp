#include "Explorer.h"

#include <QElapsedTimer>

namespace {

using Event = ExplorerEvent;

struct KindInfo
{
    Event::Kind kind;
    const char *name;
    int weight; ///< how often, among all
};

constexpr KindInfo kinds[] = {
    {Event::Sample, "sample tick", 120},
    {Event::Update, "update tick", 90},
    {Event::Step, "time passes", 60},
    {Event::Round, "round", 200},
    {Event::Pick, "pick", 40},
    {Event::Drag, "drag", 25},
    {Event::Start, "press start", 60},
    {Event::Stop, "press stop", 30},
    {Event::Limit, "set limit", 20},
    {Event::Zoom, "zoom button", 15},
    {Event::Wheel, "wheel", 12},
    {Event::Band, "rubber band", 10},
    {Event::Clear, "clear", 8},
    {Event::TraceLength, "trace length", 8},
    {Event::EditRow, "edit row", 15},
    {Event::Elsewhere, "write from elsewhere", 20},
    {Event::AcceptPath, "accept path", 3},
    {Event::LoadPath, "load path", 0},
    {Event::RunPath, "run flight path", 15},
    {Event::Show, "show", 15},
    {Event::Hide, "hide", 10},
    {Event::FaultOn, "fault on", 25},
    {Event::FaultOff, "fault off", 15},
    {Event::AllFaultsOff, "all faults off", 12},
    {Event::Nested, "nested", 30},
    {Event::Resize, "resize", 5},
    {Event::Reopen, "delete and open again", 3},
};
/// Loading through the file dialog is slow, so it is rarer than a weight can say.
constexpr unsigned int eventsPerLoad = 5000;

class Dice
{
public:
    explicit Dice(unsigned int seed)
        : random(seed)
    {
    }
    int between(int low, int high)
    {
        return low + static_cast<int>(random() % static_cast<unsigned int>(high - low + 1));
    }
    bool oneIn(unsigned int n) { return random() % n == 0; }
    /// Of any order of magnitude up to that, either sign.
    int anySize(int limit)
    {
        const int size = qMin(1 << between(3, 23), limit);
        return between(-size, size);
    }

private:
    std::mt19937 random;
};

Event::Kind anyKind(Dice &dice)
{
    if (dice.oneIn(eventsPerLoad))
        return Event::LoadPath;
    int total = 0;
    for (const KindInfo &info : kinds)
        total += info.weight;
    int drawn = dice.between(0, total - 1);
    for (const KindInfo &info : kinds) {
        drawn -= info.weight;
        if (drawn < 0)
            return info.kind;
    }
    return Event::Sample;
}

Event::Kind nestedKind(Dice &dice)
{
    const Event::Kind all[] = {Event::Start, Event::Stop,  Event::Sample, Event::Update,
                               Event::Pick,  Event::Hide,  Event::Show,   Event::RunPath,
                               Event::Clear, Event::Reopen};
    return all[dice.between(0, 9)];
}

Event anyEvent(Dice &dice)
{
    Event event{anyKind(dice), dice.between(0, 1), dice.anySize(8388608)};
    switch (event.kind) {
    case Event::Step:
    case Event::Round:
        event.a = dice.oneIn(10) ? dice.between(0, 20000) : dice.between(0, 120);
        break;
    case Event::Pick:
    case Event::Drag:
        event.a = dice.between(-300, 1300);
        event.b = dice.between(-300, 1300);
        break;
    case Event::Limit:
        event.a = dice.between(0, 3);
        break;
    case Event::Wheel:
        event.a = dice.between(-1, 1) * 120;
        event.b = dice.between(0, 1000);
        break;
    case Event::TraceLength:
        event.a = dice.oneIn(2) ? dice.between(10, 40) : dice.between(10, 100000);
        break;
    case Event::Elsewhere:
        event.a = dice.between(0, 11);
        break;
    case Event::AcceptPath:
    case Event::LoadPath:
        event.a = dice.between(0, 20);
        break;
    case Event::FaultOn:
    case Event::FaultOff:
        event.a = dice.between(0, workbench::faultTable().size() - 1);
        break;
    case Event::Nested:
        event.a = dice.oneIn(2) ? dice.between(0, 1) : dice.between(0, 8);
        event.b = nestedKind(dice);
        break;
    default:
        break;
    }
    return event;
}

const char *nameOf(int kind)
{
    for (const KindInfo &info : kinds) {
        if (info.kind == kind)
            return info.name;
    }
    return "?";
}

} // namespace

QString textOf(const ExplorerEvent &event)
{
    QString text = QLatin1String(nameOf(event.kind));
    if (event.kind == Event::Nested)
        return text +
               QStringLiteral(" in step %1: %2").arg(event.a).arg(QLatin1String(nameOf(event.b)));
    if (event.kind == Event::FaultOn || event.kind == Event::FaultOff)
        text += QLatin1Char(' ') + workbench::faultTable().at(event.a).name;
    return text + QStringLiteral(" {%1, %2}").arg(event.a).arg(event.b);
}

QString textOf(const ExplorerEvents &events)
{
    QString text;
    for (const ExplorerEvent &event : events)
        text += QStringLiteral("\n    ") + textOf(event);
    return text;
}

ExplorerEvents explorerEvents(unsigned int seed, int count)
{
    Dice dice(seed);
    ExplorerEvents events;
    // Most sequences begin with a tool that is shown.
    if (!dice.oneIn(10))
        events.append({Event::Show, 1, 0});
    while (events.size() < count)
        events.append(anyEvent(dice));
    return events;
}

std::optional<ExplorerFailure> explore(unsigned int seed, const ExplorerEvents &events)
{
    Explorer explorer(seed);
    for (int i = 0; i < events.size(); ++i) {
        explorer.apply(events.at(i));
        const QString broken = explorer.broken();
        if (!broken.isEmpty())
            return ExplorerFailure{events.mid(0, i + 1), broken};
    }
    const QString broken = explorer.brokenAtTheEnd();
    if (!broken.isEmpty())
        return ExplorerFailure{events, QStringLiteral("at the end: ") + broken};
    return std::nullopt;
}

ExplorerEvents shortest(const ExplorerEvents &events,
                        const std::function<bool(const ExplorerEvents &)> &fails)
{
    constexpr qint64 patienceMs = 60000;
    QElapsedTimer timer;
    timer.start();
    ExplorerEvents best = events;
    bool isShorter = true;
    for (int part = qMax(1, best.size() / 2); part > 1 || isShorter; part = qMax(1, part / 2)) {
        isShorter = false;
        for (int from = 0; from < best.size();) {
            if (timer.hasExpired(patienceMs))
                return best;
            ExplorerEvents fewer = best;
            fewer.remove(from, qMin(part, fewer.size() - from));
            if (fails(fewer)) {
                best = fewer;
                isShorter = true;
            } else {
                from += part;
            }
        }
    }
    return best;
}

ExplorerFailure shortest(unsigned int seed, const ExplorerFailure &failure)
{
    ExplorerFailure best = failure;
    shortest(failure.events, [&](const ExplorerEvents &tried) {
        const auto found = explore(seed, tried);
        if (found)
            best = *found;
        return found.has_value();
    });
    return best;
}
