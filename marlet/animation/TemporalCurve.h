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
    TemporalTable(const TemporalInputs &inputs, std::size_t count, bool isCompact)
        : inputs_(inputs), count_(count), isCompact_(isCompact)
    {
    }

    TemporalInputs inputs_;
    std::size_t count_;
    /// Which of two forms the entries have that follow the object.
    bool isCompact_;
};

} // namespace marlet::project
