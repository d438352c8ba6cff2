#include <marlet/animation/Interpolation.h>
#include <marlet/animation/KeyFrameList_Impl.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

using kytl::matl::KyPoint;

/// The point as one in space; empty if the value is no point of that many dimensions.
std::optional<SpatialPoint> PointIn(KeyFrameList::SpatialDataType type, const PropertyValue &value)
{
    switch (type) {
    case KeyFrameList::SpatialDataType::NotSpatial:
        return SpatialPoint{};
    case KeyFrameList::SpatialDataType::Spatial2D:
        if (const auto *point = boost::get<KyPoint<2, float>>(&value))
            return SpatialPoint{point->X, point->Y, 0};
        return std::nullopt;
    case KeyFrameList::SpatialDataType::Spatial3D:
        if (const auto *point = boost::get<KyPoint<3, float>>(&value))
            return *point;
        return std::nullopt;
    }
    return std::nullopt;
}

PropertyValue ValueOfPoint(KeyFrameList::SpatialDataType type, const SpatialPoint &point)
{
    if (type == KeyFrameList::SpatialDataType::Spatial2D)
        return KyPoint<2, float>{point.X, point.Y};
    return point;
}

bool HoldsPoint(const PropertyValue &value)
{
    return boost::get<KyPoint<2, float>>(&value) != nullptr ||
           boost::get<KyPoint<3, float>>(&value) != nullptr;
}

bool IsZero(const kytl::matl::KyVector<2, float> &handle)
{
    return handle.X == 0 && handle.Y == 0;
}

} // namespace

PropertyValue KeyFrameList_Impl::ValueAt(int time, bool isSpatialProperty) const
{
    if (time < times.front())
        return Key(0).value_;
    const std::size_t position = LastNotAfter(times, time);
    if (times[position] == time && position > 0 && times[position - 1] == time)
        return Key(FirstFrom(time)).value_;
    if (times[position] == time || position + 1 == Size())
        return Key(position).value_;
    return PieceValueAt(position, time, isSpatialProperty);
}

/// The value strictly between the two key frames of a piece.
PropertyValue KeyFrameList_Impl::PieceValueAt(std::size_t piece, int time, bool isSpatialProperty) const
{
    const KeyFrame &a = Key(piece);
    const KeyFrame &b = Key(piece + 1);
    if (a.type_ == KeyFrameType::Hold || a.value_ == b.value_)
        return a.value_;

    // With two key frames the path is the line between them, and the values themselves run along it.
    const bool isOnPath = IsSpatial() && Size() != 2 && HoldsPoint(a.value_);
    const SpatialTable *path = isSpatialProperty || isOnPath ? &SpatialCurve(piece) : nullptr;
    const auto pointAt = [&](double fraction) {
        return ValueOfPoint(spatialType, path->PointAt(path->Parameter(std::clamp(fraction, 0.0, 1.0))));
    };

    const std::int64_t span = std::int64_t{times[piece + 1]} - times[piece];
    const std::int64_t offset = std::int64_t{time} - times[piece];
    if (IsZero(a.outgoingPoint_) && IsZero(b.incomingPoint_)) {
        if (isOnPath)
            return pointAt(static_cast<double>(offset) / static_cast<double>(span));
        return StraightValue(a.value_, b.value_, span, offset);
    }

    const double t = TemporalCurve(piece).Parameter(time);
    PropertyValue value = CurvedValue(a.value_, b.value_, t, a.outgoingPoint_.Y, b.incomingPoint_.Y);
    if (!isOnPath)
        return value;
    // How far the value has got from the first point is how far it has travelled along the path.
    const SpatialPoint first = PointIn(spatialType, a.value_).value();
    const SpatialPoint second = PointIn(spatialType, b.value_).value();
    return pointAt(Distance(first, PointIn(spatialType, value).value()) / Distance(first, second));
}

const TemporalTable &KeyFrameList_Impl::TemporalCurve(std::size_t piece) const
{
    const KeyFrame &a = Key(piece);
    const KeyFrame &b = Key(piece + 1);
    const TemporalInputs inputs{times[piece], times[piece + 1], a.outgoingPoint_.X, b.incomingPoint_.X};
    const TemporalTable *table = places[piece].temporal.Load();
    if (table != nullptr && table->IsBuiltFrom(inputs) && a.outgoingCurve_.Load() == epoch_ &&
        b.incomingCurve_.Load() == epoch_)
        return *table;
    return CreateTemporalCurveCache(piece, inputs);
}

const TemporalTable &KeyFrameList_Impl::CreateTemporalCurveCache(std::size_t piece,
                                                                 const TemporalInputs &inputs) const
{
    const kytl::thread::KyScopedLock lock(lock_);
    AtomicPointer<const TemporalTable> &place = places[piece].temporal;
    const TemporalTable *table = place.Load();
    if (table == nullptr || !table->IsBuiltFrom(inputs))
        table = &Replace(place, TemporalTable::Build(inputs));
    Key(piece).outgoingCurve_.Store(epoch_);
    Key(piece + 1).incomingCurve_.Store(epoch_);
    return *table;
}

/// Empty if one of the points is of another alternative than the list's.
std::optional<SpatialInputs> KeyFrameList_Impl::InputsOfPath(std::size_t piece) const
{
    const KeyFrame &a = Key(piece);
    const KeyFrame &b = Key(piece + 1);
    const KeyFrame *before = Before(piece);
    const KeyFrame *after = After(piece + 1);
    const auto p = PointIn(spatialType, (before != nullptr ? *before : a).value_);
    const auto first = PointIn(spatialType, a.value_);
    const auto second = PointIn(spatialType, b.value_);
    const auto n = PointIn(spatialType, (after != nullptr ? *after : b).value_);
    if (!p || !first || !second || !n)
        return std::nullopt;
    return SpatialInputs{spatialType, times[piece], times[piece + 1], *p, *first, *second, *n};
}

const SpatialTable &KeyFrameList_Impl::SpatialCurve(std::size_t piece) const
{
    const std::optional<SpatialInputs> inputs = InputsOfPath(piece);
    if (!inputs)
        throw boost::bad_get();
    const SpatialTable *table = places[piece].node->spatial.Load();
    if (Counts(table, *inputs) && Key(piece).spatialCurve_.Load() == epoch_ &&
        Key(piece + 1).spatialCurve_.Load() == epoch_)
        return *table;
    return CreateSpatialCurveCache(piece, *inputs);
}

const SpatialTable &KeyFrameList_Impl::CreateSpatialCurveCache(std::size_t piece,
                                                               const SpatialInputs &inputs) const
{
    const kytl::thread::KyScopedLock lock(lock_);
    AtomicPointer<const SpatialTable> &place = places[piece].node->spatial;
    const SpatialTable *table = place.Load();
    if (!Counts(table, inputs))
        table = &Replace(place, std::make_unique<SpatialTable>(inputs));
    const auto &[firstTangents, secondTangents] = table->Tangents();
    Key(piece).StoreTangents(firstTangents.incoming, firstTangents.outgoing);
    Key(piece + 1).StoreTangents(secondTangents.incoming, secondTangents.outgoing);
    return *table;
}

bool KeyFrameList_Impl::Counts(const SpatialTable *table, const SpatialInputs &inputs) const
{
    return table != nullptr && table->built > builtBefore_ && table->IsBuiltFrom(inputs);
}

/// Puts a table in its place, under the lock.
///
/// Others may still be reading the one that was there. But it no longer counted, so the key frames have
/// changed since it was built, and whoever changed them had the list for itself: nobody can be reading what
/// had been replaced before. Only what a change left behind is kept, however often the key frames change.
template <class Table>
const Table &KeyFrameList_Impl::Replace(AtomicPointer<const Table> &place, std::unique_ptr<Table> table) const
{
    table->built = ++built_;
    const Table &result = *table;
    if (const Table *old = place.Load()) {
        std::erase_if(retired_, [old](const Retired &retired) { return retired.when <= old->built; });
        retired_.push_back({nullptr, built_});
        retired_.back().table = place.Exchange(std::move(table));
    } else {
        place.Exchange(std::move(table));
    }
    return result;
}

double KeyFrameList_Impl::ParamTforSpatialCurveLength(int firstTime, int secondTime, double fraction) const
{
    if (fraction == 1.0)
        return 1.0;
    const std::size_t next = FirstAfter(firstTime);
    if (next > 0 && next < Size() && times[next - 1] == firstTime && times[next] == secondTime) {
        const std::optional<SpatialInputs> inputs = InputsOfPath(next - 1);
        const SpatialTable *table = places[next - 1].node->spatial.Load();
        if (inputs && Counts(table, *inputs))
            return table->Parameter(fraction);
        if (inputs && inputs->first == inputs->second)
            throw std::runtime_error("Curve piece length has not been cached");
    }
    throw std::runtime_error("Curve piece key not found in spatial cache");
}

} // namespace marlet::project
