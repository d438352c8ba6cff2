#pragma once

#include <marlet/animation/CurveTable.h>
#include <marlet/animation/KeyFrameList.h>

#include <cstddef>
#include <utility>

namespace marlet::project
{

using SpatialPoint = kytl::matl::KyPoint<3, float>;
using SpatialVector = kytl::matl::KyVector<3, float>;

/// The handles of a key frame in space, relative to its point.
struct SpatialTangents {
    SpatialVector incoming;
    SpatialVector outgoing;
};

/// The handles that lead the path smoothly through a point, from the points before and after it. At an end of
/// the path the missing one is the point itself.
SpatialTangents AutoBezierTangents(const SpatialPoint &before, const SpatialPoint &point,
                                   const SpatialPoint &after);

/// The distance of two points. Lengths along a path are sums of it.
float Distance(const SpatialPoint &a, const SpatialPoint &b);

/// What the path of a piece depends on: its two points and their neighbours, which shape the tangents. All
/// points are 0 in a list that is not spatial.
struct SpatialInputs {
    KeyFrameList::SpatialDataType type;
    int firstTime;
    int secondTime;
    SpatialPoint before;
    SpatialPoint first;
    SpatialPoint second;
    SpatialPoint after;
};

/// The path of a piece in space and its lengths: the parameter of the curve by the distance travelled, along
/// 20 chords. It has no entries if the two points coincide.
class SpatialTable final : public CurveTable
{
public:
    explicit SpatialTable(const SpatialInputs &inputs);

    /// Bit by bit, so that a point that is no number matches itself.
    bool IsBuiltFrom(const SpatialInputs &inputs) const;

    /// Those of the first and of the second key frame.
    const std::pair<SpatialTangents, SpatialTangents> &Tangents() const { return tangents_; }

    /// The parameter at a fraction (0 to 1) of the length.
    /// @throws std::runtime_error if the table has no length
    double Parameter(double fraction) const;

    SpatialPoint PointAt(double s) const;

private:
    static constexpr std::size_t kChords = 20;

    void Enter(double length, double parameter);

    SpatialInputs inputs_;
    std::pair<SpatialTangents, SpatialTangents> tangents_;
    std::size_t count_ = 0;
    double lengths_[kChords + 1];
    double parameters_[kChords + 1];
};

} // namespace marlet::project
