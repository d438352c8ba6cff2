#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>

#include <algorithm>
#include <cstdint>

namespace marlet::project
{

namespace
{

void RequireFit(const AnimatedProperty &property, const std::vector<KeyFrame> &copied)
{
    const PropertyManager &properties = *property.Properties();
    if (!properties.CanAnimate(property.Name().c_str()))
        throw OperationException(Quoted(FromUtf8(property.Name())) + " cannot be animated");
    const int type = properties.DefaultValue(property.Name().c_str()).which();
    for (const KeyFrame &key : copied)
        if (key.Value().which() != type)
            throw OperationException("The key frames have values of another type than " +
                                     Quoted(FromUtf8(property.Name())));
}

/// With a new ID.
KeyFrame Placed(const KeyFrame &copied, int time)
{
    KeyFrame key(time, copied.Value());
    key.SetType(copied.Type());
    key.SetIncomingPoint(copied.IncomingPoint());
    key.SetOutgoingPoint(copied.OutgoingPoint());
    return key;
}

} // namespace

std::vector<KeyFrame> CopyKeyFrames(const AnimatedProperty &property, const std::vector<kytl::KyID> &keys)
{
    std::vector<KeyFrame> copied;
    for (const kytl::KyID &key : keys)
        copied.push_back(property.Keys().GetByID(key));
    // Those that share a time are asked for in their order.
    std::ranges::stable_sort(copied, {}, &KeyFrame::Time);
    return copied;
}

std::vector<kytl::KyID> PasteKeyFrames(const std::shared_ptr<Project> &project,
                                       const AnimatedProperty &property, const std::vector<KeyFrame> &copied,
                                       int time)
{
    RequireFit(property, copied);
    Edit edit(project, u"Paste key frames");
    if (copied.empty())
        return {};
    const std::int64_t distance = std::int64_t{time} - copied.front().Time();
    const std::int64_t last = copied.back().Time() + distance;
    if (last != Saturate(last))
        throw OperationException("Key frames would leave the times that there are");

    std::vector<kytl::KyID> pasted;
    std::vector<KeyFrame> added;
    for (const KeyFrame &key : copied) {
        added.push_back(Placed(key, static_cast<int>(key.Time() + distance)));
        pasted.push_back(added.back().ID());
    }
    RemoveKeyFrames(project, property, KeyFramesIn(property, {time, static_cast<int>(last)}));
    property.Touch(edit, pasted);
    for (const KeyFrame &key : added)
        property.KeysToEdit().Add(key);
    edit.Commit();
    return pasted;
}

} // namespace marlet::project
