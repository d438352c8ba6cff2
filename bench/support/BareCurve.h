#pragma once

#include <vector>

namespace bench
{

/// What a program would do that has nothing but a curve to evaluate: a flat array of key frames, a binary
/// search, and Newton's method on the cubic Bezier of the piece.
class BareCurve
{
public:
    struct Key {
        double time;
        double value;
        double incomingX, incomingY;
        double outgoingX, outgoingY;
    };

    void Add(const Key &key) { keys_.push_back(key); }
    double ValueAt(double time) const;

private:
    std::vector<Key> keys_;
};

} // namespace bench
