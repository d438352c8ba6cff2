#pragma once

#include <marlet/animation/CurveTable.h>

#include <cstddef>
#include <memory>

namespace marlet::project
{

/// What the time curve of a piece depends on: the times of its two key frames and the X of the handles
/// between them.
struct TemporalInputs {
    int firstTime;
    int secondTime;
    float outgoing;
    float incoming;
};

/// The parameter of the cubic Bezier curve whose X axis is time, by time: points of the curve at integer
/// times, no further apart than about a hundredth of the piece, and straight lines between them.
class TemporalTable final : public CurveTable
{
public:
    static std::unique_ptr<TemporalTable> Build(const TemporalInputs &inputs);

    /// Bit by bit, so that a handle that is no number matches itself.
    bool IsBuiltFrom(const TemporalInputs &inputs) const;

    /// The parameter of a time that lies strictly between the two key frames.
    double Parameter(int time) const;

private:
    explicit TemporalTable(const TemporalInputs &inputs) : inputs_(inputs) {}

    // The entries follow the object: all parameters, then all times, both in the order of time.
    double *Parameters() { return reinterpret_cast<double *>(this + 1); }
    const double *Parameters() const { return reinterpret_cast<const double *>(this + 1); }
    int *Times() { return reinterpret_cast<int *>(Parameters() + count_); }
    const int *Times() const { return reinterpret_cast<const int *>(Parameters() + count_); }

    TemporalInputs inputs_;
    std::size_t count_ = 0;
};

} // namespace marlet::project
