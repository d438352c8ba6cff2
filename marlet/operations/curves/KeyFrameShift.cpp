#include <marlet/operations/curves/KeyFrameShift.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/plugins/EffectInstance.h>

#include <cmath>
#include <utility>

namespace marlet::project
{

namespace
{

template <class Owner> void Shift(Edit &edit, const std::shared_ptr<Owner> &owner, double milliseconds)
{
    PropertyManager &properties = owner->Properties();
    for (const NarrowString &name : properties.PropertyNames()) {
        if (std::as_const(properties).KeyFrames(name.c_str()).IsEmpty())
            continue;
        edit.Touch(owner, name.c_str());
        KeyFrameList &keyFrames = properties.KeyFrames(name.c_str());
        for (const kytl::KyID &id : keyFrames.Identifiers()) {
            int time = 0;
            keyFrames.Exists(id, &time);
            keyFrames.Move(id, Saturate(std::int64_t{time} + std::llround(milliseconds)));
        }
    }
}

} // namespace

void ShiftKeyFrames(Edit &edit, const std::shared_ptr<AbstractSequenceObject> &object, long long frames,
                    double frameRate)
{
    if (!(frameRate > 0))
        return;
    const double milliseconds = static_cast<double>(frames) * 1000 / frameRate;
    Shift(edit, object, milliseconds);
    for (const std::shared_ptr<EffectInstance> &effect : object->Effects())
        Shift(edit, std::shared_ptr<PluginInstance>(effect), milliseconds);
}

} // namespace marlet::project
