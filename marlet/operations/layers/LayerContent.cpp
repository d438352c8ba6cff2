#include <marlet/operations/layers/LayerContent.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

namespace
{

class KeyFrameMove
{
public:
    KeyFrameMove(Edit &edit, long long frames, double frameRate)
        : edit_(edit), frames_(frames), msPerFrame_(AudioVideoSettings::MsPerFrame(frameRate))
    {
    }

    template <class Owner> void Move(const std::shared_ptr<Owner> &owner)
    {
        if (!owner)
            return;
        PropertyManager &properties = owner->Animation();
        for (const NarrowString &name : properties.PropertyNames()) {
            if (std::as_const(properties).KeyFrames(name.c_str()).IsEmpty())
                continue;
            edit_.Touch(owner, name.c_str());
            MoveAll(properties.KeyFrames(name.c_str()));
        }
    }

private:
    /// In an order in which none passes another one, so that those at one time stay as they are.
    void MoveAll(KeyFrameList &keyFrames)
    {
        std::vector<kytl::KyID> ids = keyFrames.Identifiers();
        if (frames_ > 0)
            std::reverse(ids.begin(), ids.end());
        for (const kytl::KyID &id : ids) {
            int time = 0;
            keyFrames.Exists(id, &time);
            keyFrames.Move(id, Moved(time));
        }
    }

    int Moved(int time) const
    {
        const double frame = RoundHalfAway(time / msPerFrame_);
        const auto frames = static_cast<double>(frames_);
        if (Truncate<int>(frame * msPerFrame_) == time)
            return Truncate<int>((frame + frames) * msPerFrame_);
        return Truncate<int>(RoundHalfAway(time + frames * msPerFrame_));
    }

    Edit &edit_;
    long long frames_;
    double msPerFrame_;
};

} // namespace

AssetLayer::EffectList *EffectsOf(AbstractLayer &layer)
{
    if (auto *asset = dynamic_cast<AssetLayer *>(&layer))
        return &asset->Effects();
    if (auto *grade = dynamic_cast<GradeLayer *>(&layer))
        return &grade->Effects();
    auto *text = dynamic_cast<TextLayer *>(&layer);
    return text ? &text->Effects() : nullptr;
}

AssetLayer::MaskList *MasksOf(AbstractLayer &layer)
{
    if (auto *asset = dynamic_cast<AssetLayer *>(&layer))
        return &asset->Masks();
    if (auto *grade = dynamic_cast<GradeLayer *>(&layer))
        return &grade->Masks();
    auto *text = dynamic_cast<TextLayer *>(&layer);
    return text ? &text->Masks() : nullptr;
}

AssetLayer::TrackerList *TrackersOf(AbstractLayer &layer)
{
    auto *asset = dynamic_cast<AssetLayer *>(&layer);
    return asset ? &asset->Trackers() : nullptr;
}

void NameComposition(Edit &edit, const std::shared_ptr<AbstractLayer> &layer, const kytl::KyID &composition)
{
    edit.Touch(layer);
    layer->SetParentComposition(composition);
    if (const auto *effects = EffectsOf(*layer)) {
        for (const std::shared_ptr<EffectInstance> &effect : *effects) {
            if (!effect)
                continue;
            edit.Touch(std::shared_ptr<PluginInstance>(effect));
            effect->SetParent(layer->ID(), composition);
        }
    }
}

void MoveKeyFrames(Edit &edit, const std::shared_ptr<AbstractLayer> &layer, long long frames,
                   double frameRate)
{
    if (frames == 0 || !(frameRate > 0))
        return;
    KeyFrameMove move(edit, frames, frameRate);
    move.Move(layer);
    if (const auto *effects = EffectsOf(*layer))
        for (const std::shared_ptr<EffectInstance> &effect : *effects)
            move.Move(std::shared_ptr<PluginInstance>(effect));
    if (const auto *masks = MasksOf(*layer)) {
        for (const std::shared_ptr<Mask> &mask : *masks) {
            if (!mask)
                continue;
            move.Move(mask);
            for (const std::shared_ptr<PathPoint> &point : mask->Path().Points())
                move.Move(point);
        }
    }
    if (const auto *trackers = TrackersOf(*layer)) {
        for (const std::shared_ptr<Tracker> &tracker : *trackers) {
            if (!tracker)
                continue;
            move.Move(tracker->PrimaryTrackingPoint());
            move.Move(tracker->SecondaryTrackingPoint());
        }
    }
}

} // namespace marlet::project
