#pragma once

#include <QString>

namespace workbench {

class TapeLink;

/// Tells whether a run without a person goes as on the tape that answers it.
class ReplayWatch
{
public:
    /// Refers to the tape; null watches nothing and finds no problem.
    explicit ReplayWatch(const TapeLink *tape);

    /// Empty, or one line: the first write that was not as on the tape.
    QString deviation() const;

    /// As deviation(); or that the panel and the tape wait for each other, which is known after
    /// some seconds.
    QString problem() const;

    /// For the end of a run: as deviation(), and the tape must have been played to its end.
    QString problemAtEnd() const;

private:
    const TapeLink *tape;
};

} // namespace workbench
