#include <marlet/operations/curves/KeyFrameOperations.h>

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

/// The frames strictly between two times, as layers turn frames into times.
std::vector<int> FramesBetween(int first, int last, double framesPerSecond)
{
    constexpr double kMost = 1e6;
    const double msPerFrame = AudioVideoSettings::MsPerFrame(framesPerSecond);
    if ((static_cast<double>(last) - first) / msPerFrame > kMost)
        throw OperationException("There would be more than a million key frames");
    std::vector<int> times;
    for (double frame = std::floor(first / msPerFrame);; ++frame) {
        const int time = Truncate<int>(frame * msPerFrame);
        if (time >= last)
            return times;
        if (time > first)
            times.push_back(time);
    }
}

} // namespace

void BakeKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                   double framesPerSecond, const TimeSpan &span)
{
    if (!(framesPerSecond > 0 && framesPerSecond <= 1000))
        throw OperationException("A curve is baked to a rate above 0 and up to 1000 frames per second");
    Edit edit(project, u"Bake key frames");
    if (property.Keys().IsEmpty())
        return;
    const int first = std::max(span.first, property.Keys().FirstByTime().Time());
    const int last = std::min(span.last, property.Keys().LastByTime().Time());
    if (first >= last)
        return;
    std::vector<KeyFrame> baked;
    for (const int time : FramesBetween(first, last, framesPerSecond))
        baked.emplace_back(time, property.ValueAt(time));

    property.Touch(edit);
    const PropertyValue end = property.ValueAt(last); // which splitting the curve may change a little
    InsertKeyFrame(project, property, first);
    InsertKeyFrame(project, property, last);
    KeyFrameList &list = property.KeysToEdit();
    for (const kytl::KyID &id : KeyFramesIn(property, {first + 1, last - 1}))
        list.Remove(id);
    KeyFrame &begin = list.GetByID(list.IdentifiersAt(first).back());
    begin.SetType(KeyFrameType::Linear);
    begin.SetOutgoingPoint({});
    list.At(last).SetValue(end);
    list.At(last).SetIncomingPoint({});
    for (const KeyFrame &key : baked)
        list.Add(key);
    edit.Commit();
}

} // namespace marlet::project
