#pragma once

#include <vector>

namespace workbench {

/// A motion along a line in pieces of constant acceleration, from position and time 0. At the end
/// it stands still, unless nothing was appended.
class Profile
{
public:
    struct State
    {
        double position = 0;
        double speed = 0; ///< signed
    };

    explicit Profile(double startSpeed = 0)
        : last{0, startSpeed}
    {
    }

    /// Changes the speed evenly to `speed` at `rate`, which is above 0.
    void changeSpeed(double speed, double rate);

    /// Keeps the speed, which is not 0, over a further `distance` in its direction.
    void cruise(double distance);

    /// From 0 on; past the end the profile rests where it ended.
    State at(double seconds) const;

    double duration() const { return end; }
    double endPosition() const { return last.position; }

private:
    struct Piece
    {
        double begin;
        State state;
        double acceleration;
    };

    void append(double seconds, double acceleration, State after);

    std::vector<Piece> pieces;
    State last;
    double end = 0;
};

} // namespace workbench
