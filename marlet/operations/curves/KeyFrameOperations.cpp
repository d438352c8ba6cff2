#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Vector = kytl::matl::KyVector<2, float>;
using IDs = std::vector<kytl::KyID>;

struct Retiming {
    kytl::KyID id;
    int from = 0;
    int to = 0;
};

int RequireTime(double time)
{
    if (!(time >= std::numeric_limits<int>::min() && time <= std::numeric_limits<int>::max()))
        throw OperationException("Key frames would leave the times that there are");
    return static_cast<int>(time);
}

/// What becomes of the times of key frames, in the order of the list.
std::vector<Retiming> Retimed(const AnimatedProperty &property, const IDs &keys,
                              const std::function<double(double)> &newTime)
{
    const KeyFrameList &list = property.Keys();
    std::unordered_set<kytl::KyID> chosen;
    for (const kytl::KyID &key : keys)
        chosen.insert(list.GetByID(key).ID());
    std::vector<Retiming> retimed;
    for (const kytl::KyID &id : list.Identifiers()) {
        const int time = list.GetByID(id).Time();
        if (chosen.contains(id))
            retimed.push_back({id, time, RequireTime(newTime(time))});
    }
    for (std::size_t i = 0; i < retimed.size(); ++i) {
        const bool meetsChosen =
            i > 0 && retimed[i].to == retimed[i - 1].to && retimed[i].from != retimed[i - 1].from;
        const IDs there = list.IdentifiersAt(retimed[i].to);
        const auto stays = [&](const kytl::KyID &id) { return !chosen.contains(id); };
        const bool meetsOthers = retimed[i].to != retimed[i].from && std::ranges::any_of(there, stays);
        if (meetsChosen || meetsOthers)
            throw OperationException("Two key frames of " + Quoted(FromUtf8(property.Name())) +
                                     " would stand at " + std::to_string(retimed[i].to) + " ms");
    }
    return retimed;
}

/// In an order in which those that share a time stay in theirs.
void Apply(KeyFrameList &list, const std::vector<Retiming> &retimed)
{
    for (const Retiming &key : retimed)
        if (key.to != key.from)
            list.Move(key.id, key.to);
}

float Scaled(float handle, double newSpan, double span)
{
    return static_cast<float>(handle * (newSpan / span));
}

/// Handles on both sides of a piece grow with it.
void ScaleHandles(KeyFrameList &list, const Retiming &first, const Retiming &second)
{
    const double span = static_cast<double>(second.from) - first.from;
    const double newSpan = static_cast<double>(second.to) - first.to;
    if (span == 0)
        return;
    KeyFrame &a = list.GetByID(first.id);
    KeyFrame &b = list.GetByID(second.id);
    a.SetOutgoingPoint({Scaled(a.OutgoingPoint().X, newSpan, span), a.OutgoingPoint().Y});
    b.SetIncomingPoint({Scaled(b.IncomingPoint().X, newSpan, span), b.IncomingPoint().Y});
}

/// A subtraction, since the negative of 0 would be another text.
Vector Mirrored(const Vector &handle)
{
    return {0 - handle.X, handle.Y};
}

} // namespace

IDs KeyFramesIn(const AnimatedProperty &property, const TimeSpan &span)
{
    IDs keys;
    property.Keys().ForEach([&](const KeyFrame &key) {
        if (key.Time() >= span.first && key.Time() <= span.last)
            keys.push_back(key.ID());
    });
    return keys;
}

void RemoveKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                     const IDs &keys)
{
    Edit edit(project, u"Remove key frames");
    property.Touch(edit, keys);
    for (const kytl::KyID &key : keys)
        property.KeysToEdit().Remove(key);
    edit.Commit();
}

void MoveKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property, const IDs &keys,
                   int milliseconds)
{
    Edit edit(project, u"Move key frames");
    const auto retimed = Retimed(property, keys, [=](double time) { return time + milliseconds; });
    property.Touch(edit, keys);
    Apply(property.KeysToEdit(), retimed);
    edit.Commit();
}

void ScaleKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                    const IDs &keys, int pivot, double factor)
{
    if (!(factor > 0))
        throw OperationException("Key frames are scaled in time by a factor above 0");
    Edit edit(project, u"Scale key frames");
    const auto retimed =
        Retimed(property, keys, [=](double time) { return std::round(pivot + (time - pivot) * factor); });
    property.Touch(edit, keys);
    KeyFrameList &list = property.KeysToEdit();
    const IDs order = list.Identifiers();
    auto place = order.begin();
    for (std::size_t i = 0; i + 1 < retimed.size(); ++i) {
        place = std::find(place, order.end(), retimed[i].id);
        if (*(place + 1) == retimed[i + 1].id)
            ScaleHandles(list, retimed[i], retimed[i + 1]);
    }
    Apply(list, retimed);
    edit.Commit();
}

void ReverseKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                      const TimeSpan &span)
{
    Edit edit(project, u"Reverse key frames");
    const std::vector<KeyFrame> former = CopyKeyFrames(property, KeyFramesIn(property, span));
    if (former.size() < 2)
        return;
    property.Touch(edit);
    KeyFrameList &list = property.KeysToEdit();
    // The pieces outside keep what the key frames at their ends say of them.
    const KeyFrame &first = former.front();
    const KeyFrame &last = former.back();
    for (std::size_t i = former.size(); i-- > 0;) {
        const bool begins = i + 1 == former.size();
        const bool ends = i == 0;
        list.Move(former[i].ID(),
                  static_cast<int>(std::int64_t{first.Time()} + last.Time() - former[i].Time()));
        KeyFrame &key = list.GetByID(former[i].ID());
        key.SetType(ends ? last.Type() : former[i - 1].Type());
        key.SetIncomingPoint(begins ? first.IncomingPoint() : Mirrored(former[i].OutgoingPoint()));
        key.SetOutgoingPoint(ends ? last.OutgoingPoint() : Mirrored(former[i].IncomingPoint()));
    }
    edit.Commit();
}

} // namespace marlet::project
