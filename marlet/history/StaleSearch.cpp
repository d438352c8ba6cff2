#include <marlet/history/StaleSearch.h>

#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObject.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/history/ProjectUses.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <unordered_map>

namespace marlet::project
{

namespace
{

constexpr int kFirst = std::numeric_limits<int>::min();
constexpr int kLast = std::numeric_limits<int>::max();

/// Frames from the first to before the end.
struct Span {
    int first = kFirst;
    int end = kLast;

    bool IsEmpty() const { return first >= end; }
    Span And(const Span &other) const { return {std::max(first, other.first), std::min(end, other.end)}; }
};

/// Grows to hold another span; whether it did.
bool Grow(Span &span, const Span &by)
{
    const Span before = span;
    span = span.IsEmpty() ? by : Span{std::min(span.first, by.first), std::max(span.end, by.end)};
    return span.first != before.first || span.end != before.end;
}

constexpr Span kNothing{0, 0};

/// Goes from what changed along all that shows it.
class StaleSearch
{
public:
    explicit StaleSearch(const Project &project) : project_(project), uses_(project) {}

    std::vector<StaleFrames> Run(const std::vector<ObjectChange> &changes,
                                 const std::vector<ChangeList::FormerFrames> &former)
    {
        for (const ObjectChange &change : changes)
            Begin(change);
        for (const ChangeList::FormerFrames &frames : former)
            BeginFormer(frames);
        while (!waiting_.empty()) {
            const kytl::KyID composition = waiting_.front();
            waiting_.pop_front();
            FollowComposition(composition);
        }
        std::vector<StaleFrames> stale;
        for (const kytl::KyID &timeline : order_)
            if (const Span &span = timelines_[timeline]; !span.IsEmpty())
                stale.push_back({timeline, span.first, span.end});
        return stale;
    }

private:
    static bool IsSeen(const ObjectChange &change)
    {
        for (const Aspect aspect : {Aspect::Frames, Aspect::Settings, Aspect::Links, Aspect::Members,
                                    Aspect::Properties, Aspect::Text, Aspect::File, Aspect::PrivateData})
            if (change.aspects.Has(aspect))
                return true;
        return false;
    }

    void Begin(const ObjectChange &change)
    {
        if (!IsSeen(change))
            return;
        switch (change.kind) {
        case ObjectKind::Project:
            BeginProject(change);
            break;
        case ObjectKind::Asset:
            BeginAsset(change);
            break;
        case ObjectKind::Layer:
            BeginLayer(change, change.id);
            break;
        case ObjectKind::Mask:
        case ObjectKind::PathPoint:
        case ObjectKind::Effect:
        case ObjectKind::Transition:
            BeginOwner(change);
            break;
        case ObjectKind::HostObject:
            BeginHostObject(change);
            break;
        case ObjectKind::Sequence:
            AddTimeline(change.id, {});
            break;
        case ObjectKind::Track:
            BeginTrack(change);
            break;
        case ObjectKind::SequenceObject:
            AddObject(change.id);
            break;
        case ObjectKind::Folder:
        case ObjectKind::Tracker:
        case ObjectKind::TrackingPoint:
            break;
        }
    }

    void BeginProject(const ObjectChange &change)
    {
        // Every picture is of the colour depth; an asset that comes or goes is seen where it is used.
        for (const auto &[id, composition] : uses_.Compositions())
            if (change.aspects.Has(Aspect::Settings))
                AddTimeline(id, {});
        for (const std::vector<kytl::KyID> *ids : {&change.added, &change.removed})
            for (const kytl::KyID &id : *ids)
                FollowAsset(id, {});
        if (const std::shared_ptr<EditorSequence> sequence = project_.Sequence())
            if (change.aspects.Has(Aspect::Settings) || std::ranges::count(change.added, sequence->ID()))
                AddTimeline(sequence->ID(), {});
    }

    void BeginAsset(const ObjectChange &change)
    {
        const bool isSeen = change.aspects.Has(Aspect::Settings) || change.aspects.Has(Aspect::File);
        const bool isComposition = uses_.Compositions().contains(change.id);
        // A composition may have been longer, so that all of what shows it counts.
        if (isSeen && isComposition)
            AddTimeline(change.id, {});
        if (isSeen)
            FollowAsset(change.id, {});
        if (!isComposition || !change.aspects.Has(Aspect::Members))
            return;
        for (const kytl::KyID &layer : change.added)
            AddLayer(layer, {});
        if (change.added.empty() && change.removed.empty())
            AddTimeline(change.id, {});
    }

    void BeginLayer(const ObjectChange &change, const kytl::KyID &layerID)
    {
        const ProjectUses::LayerUse *use = uses_.Layer(layerID);
        if (!use)
            return;
        Span span;
        if (change.aspects == Aspects(Aspect::Properties))
            span = FramesOf(*use, change.properties);
        AddLayer(layerID, span);
    }

    /// The times of the layer as frames of its composition, with a frame more at both ends for the roundings.
    static Span FramesOf(const ProjectUses::LayerUse &use, const std::vector<PropertyChange> &properties)
    {
        Span span = kNothing;
        const double rate = use.composition->Settings().FrameRate() / 1000.0;
        const auto frame = [&](int time, int more) {
            return Saturate(use.layer->StartFrame() + static_cast<std::int64_t>(std::floor(time * rate)) +
                            more);
        };
        for (const PropertyChange &property : properties)
            Grow(span, {property.firstTime == kFirst ? kFirst : frame(property.firstTime, -1),
                        property.lastTime == kLast ? kLast : frame(property.lastTime, 2)});
        return span;
    }

    void BeginOwner(const ObjectChange &change)
    {
        if (const kytl::KyID *layer = uses_.OwningLayer(change.id))
            BeginLayer(change, *layer);
        for (const kytl::KyID &object : uses_.OwningObjects(change.id))
            AddObject(object);
    }

    /// It has the ID of what shows it, which may be anything.
    void BeginHostObject(const ObjectChange &change)
    {
        if (uses_.Compositions().contains(change.id) || change.id == uses_.Sequence())
            AddTimeline(change.id, {});
        BeginLayer(change, change.id);
        BeginOwner(change);
        FollowAsset(change.id, {});
        AddObject(change.id);
    }

    void BeginTrack(const ObjectChange &change)
    {
        const std::shared_ptr<EditorSequence> sequence = project_.Sequence();
        for (const kytl::KyID &object : change.added)
            AddObject(object);
        // What left a track, or was moved as a whole, tells its former frames.
        const bool isAll =
            change.aspects.Has(Aspect::Settings) ||
            (change.aspects.Has(Aspect::Members) && change.added.empty() && change.removed.empty());
        if (sequence && isAll)
            AddTimeline(sequence->ID(), {});
    }

    void BeginFormer(const ChangeList::FormerFrames &frames)
    {
        const Span span{frames.frames.first, frames.frames.end};
        AddTimeline(frames.frames.timeline, span);
        FollowLayers(frames.object, {});
    }

    void AddTimeline(const kytl::KyID &timeline, const Span &frames)
    {
        const auto known = timelines_.try_emplace(timeline, kNothing);
        if (known.second)
            order_.push_back(timeline);
        const ProjectUses::Frames all = uses_.FramesOf(timeline);
        // What stood there before may have reached further than what is there.
        const bool isAll = frames.end == kLast || !(timeline == uses_.Sequence());
        const Span grown = frames.And({all.first, isAll ? all.end : kLast});
        if (!grown.IsEmpty() && Grow(known.first->second, grown) && uses_.Compositions().contains(timeline))
            waiting_.push_back(timeline);
    }

    void AddObject(const kytl::KyID &id)
    {
        const std::shared_ptr<EditorSequence> sequence = project_.Sequence();
        const std::shared_ptr<AbstractSequenceObject> object =
            sequence ? sequence->FindObjectByID(id) : nullptr;
        if (object)
            AddTimeline(sequence->ID(), {object->StartFrame(), object->EndFrame()});
    }

    /// The layer as far as it is seen, and all that hangs on it or refers to it at those frames.
    void AddLayer(const kytl::KyID &id, const Span &frames)
    {
        std::vector<std::pair<kytl::KyID, Span>> stack{{id, frames}};
        while (!stack.empty()) {
            const auto [layerID, span] = stack.back();
            stack.pop_back();
            const ProjectUses::LayerUse *use = uses_.Layer(layerID);
            if (!use || !Grow(layers_.try_emplace(layerID, kNothing).first->second, span))
                continue;
            AddTimeline(use->composition->ID(), span.And({use->layer->StartFrame(), use->layer->EndFrame()}));
            for (const kytl::KyID &dependent : uses_.Dependents(layerID))
                stack.emplace_back(dependent, span);
        }
    }

    /// What refers to a layer that may be gone.
    void FollowLayers(const kytl::KyID &layer, const Span &frames)
    {
        for (const kytl::KyID &dependent : uses_.Dependents(layer))
            AddLayer(dependent, frames);
    }

    void FollowComposition(const kytl::KyID &composition)
    {
        FollowAsset(composition, timelines_[composition]);
    }

    /// Frames of an asset as they are seen where it is used.
    void FollowAsset(const kytl::KyID &asset, const Span &frames)
    {
        for (const kytl::KyID &layerID : uses_.LayersOf(asset)) {
            const ProjectUses::LayerUse *use = uses_.Layer(layerID);
            AddLayer(layerID, FramesThrough(*use, asset, frames));
        }
        for (const kytl::KyID &object : uses_.ObjectsOf(asset))
            AddObject(object);
    }

    /// Frames of a composition as frames of the one that shows it by a layer; all of them where the two count
    /// differently.
    Span FramesThrough(const ProjectUses::LayerUse &use, const kytl::KyID &asset, const Span &frames) const
    {
        const auto shown = uses_.Compositions().find(asset);
        const auto *layer = dynamic_cast<const AssetLayer *>(use.layer.get());
        const bool isCountedAlike =
            shown != uses_.Compositions().end() && layer &&
            shown->second->Settings().FrameRate() == use.composition->Settings().FrameRate();
        if (!isCountedAlike)
            return {};
        const std::int64_t offset = std::int64_t{layer->StartFrame()} - layer->AssetInstanceStart();
        return {frames.first == kFirst ? kFirst : Saturate(frames.first + offset),
                frames.end == kLast ? kLast : Saturate(frames.end + offset)};
    }

    const Project &project_;
    ProjectUses uses_;
    std::unordered_map<kytl::KyID, Span> timelines_;
    std::vector<kytl::KyID> order_;
    std::unordered_map<kytl::KyID, Span> layers_;
    std::deque<kytl::KyID> waiting_;
};

} // namespace

std::vector<StaleFrames> FindStaleFrames(const Project &project, const std::vector<ObjectChange> &changes,
                                         const std::vector<ChangeList::FormerFrames> &former)
{
    return StaleSearch(project).Run(changes, former);
}

} // namespace marlet::project
