#include <marlet/checks/LayerContentCheck.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/EffectCheck.h>
#include <marlet/checks/PropertyCheck.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <cmath>
#include <utility>

namespace marlet::project
{

namespace
{

using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
using MaskList = kytl::KyList<std::shared_ptr<Mask>, std::vector>;

/// Of one layer.
class ContentChecker
{
public:
    ContentChecker(CheckScope &scope, const Place &place, const AbstractLayer &layer,
                   const Findings::IDSet &layers)
        : scope_(scope), place_(place), layer_(layer), layers_(layers)
    {
    }

    void CheckEffects(const EffectList &effects)
    {
        project::CheckEffects(scope_, place_, effects, {layer_.ID(), layer_.ParentCompositionID(), &layers_});
    }

    void CheckMasks(const MaskList &masks)
    {
        Findings::IDSet seen;
        for (const std::shared_ptr<Mask> &mask : masks) {
            if (!mask)
                continue;
            const Place place("mask", mask->Name(), mask->ID(), &place_);
            scope_.findings.CheckID(place, mask->ID(), seen);
            scope_.findings.CheckHolder(place, mask->ParentLayerID(), layer_.ID(),
                                        [mask, id = layer_.ID()](Project &) { mask->SetParentLayerID(id); });
            CheckProperties(scope_.findings, place, std::as_const(*mask).Animation(),
                            {scope_.models.OfMask(), scope_.hasExpressionEngine},
                            [mask]() -> PropertyManager & { return mask->Animation(); });
            CheckOutline(mask, place);
        }
    }

    void CheckTrackers(const AssetLayer::TrackerList &trackers)
    {
        Findings::IDSet seen;
        for (const std::shared_ptr<Tracker> &tracker : trackers) {
            if (!tracker)
                continue;
            const Place place("tracker", tracker->Name(), tracker->ID(), &place_);
            scope_.findings.CheckID(place, tracker->ID(), seen);
            scope_.findings.CheckHolder(
                place, tracker->ParentLayerID(), layer_.ID(),
                [tracker, id = layer_.ID()](Project &) { tracker->SetParentLayerID(id); });
            CheckDestination(tracker, place);
            CheckPoint("primary point", std::as_const(*tracker).PrimaryTrackingPoint(), place);
            CheckPoint("secondary point", std::as_const(*tracker).SecondaryTrackingPoint(), place);
        }
    }

    void CheckText(const TextLayer &layer)
    {
        std::size_t characters = 0;
        std::size_t bare = 0;
        std::size_t odd = 0;
        for (const TextLayer::Token *token = layer.Text().first.get(); token; token = token->next.get()) {
            if (token->type != TextLayer::Token::kCharacter)
                continue;
            ++characters;
            bare += !token->format;
            odd += token->format && !IsFinite(*token->format);
        }
        if (characters == 0)
            scope_.findings.Note(FindingKind::Text, place_, "its text is empty");
        if (bare > 0)
            scope_.findings.Warn(FindingKind::Text, place_,
                                 "its text has " + Counted(bare, "character") + " without a format");
        if (odd > 0)
            scope_.findings.Warn(FindingKind::NoNumber, place_,
                                 "its text has " + Counted(odd, "character") +
                                     " in a format that is not finite");
    }

private:
    static bool IsFinite(const TextLayer::Format &format)
    {
        for (const kytl::KyColorRGBA_32f *color : {&format.fillColor, &format.strokeColor})
            if (!std::isfinite(color->R + color->G + color->B + color->A))
                return false;
        return std::isfinite(format.strokeWidth) && std::isfinite(format.tracking) &&
               std::isfinite(format.leading);
    }

    void CheckOutline(const std::shared_ptr<Mask> &mask, const Place &place)
    {
        const MotionPath &path = std::as_const(*mask).Path();
        const NarrowString name;
        const Place outline("outline", name, &place, &path.ID());
        scope_.findings.CheckHolder(outline, path.ParentID(), mask->ID(),
                                    [mask](Project &) { mask->Path().SetParentID(mask->ID()); });
        Findings::IDSet seen;
        std::size_t count = 0;
        for (const std::shared_ptr<PathPoint> &point : path.Points()) {
            if (!point)
                continue;
            const NarrowString number = std::to_string(++count);
            const Place pointPlace("point", number, &outline, &point->ID());
            scope_.findings.CheckID(pointPlace, point->ID(), seen);
            scope_.findings.CheckHolder(pointPlace, point->ParentPathID(), path.ID(),
                                        [point, id = path.ID()](Project &) { point->SetParentPathID(id); });
            CheckProperties(scope_.findings, pointPlace, std::as_const(*point).Animation(),
                            {scope_.models.OfPathPoint(), scope_.hasExpressionEngine},
                            [point]() -> PropertyManager & { return point->Animation(); });
        }
        constexpr std::size_t kLeastPoints = 3;
        if (count < kLeastPoints)
            scope_.findings.Warn(FindingKind::Outline, place,
                                 "its outline has " + Counted(count, "point") +
                                     ", which is too few to enclose anything");
    }

    void CheckDestination(const std::shared_ptr<Tracker> &tracker, const Place &place)
    {
        const kytl::KyID &destination = tracker->DestinationLayerID();
        if (destination.IsNull())
            scope_.findings.Note(FindingKind::NoDestination, place, "no layer takes its motion over");
        else if (!layers_.contains(destination))
            scope_.findings.AddDangling(
                Finding::Severity::Warning, place, "the destination layer", destination, "does not exist",
                {"clears the destination", [tracker](Project &) { tracker->ClearDestinationLayerID(); }});
    }

    void CheckPoint(const NarrowString &name, const std::shared_ptr<TrackingPoint> &point,
                    const Place &tracker)
    {
        if (!point)
            return scope_.findings.Warn(FindingKind::MissingPoint, tracker, "it cannot be run");
        CheckProperties(scope_.findings, Place(nullptr, name, &tracker, &point->ID()),
                        std::as_const(*point).Animation(),
                        {scope_.models.OfTrackingPoint(), scope_.hasExpressionEngine},
                        [point]() -> PropertyManager & { return point->Animation(); });
    }

    CheckScope &scope_;
    const Place &place_;
    const AbstractLayer &layer_;
    const Findings::IDSet &layers_;
};

} // namespace

void CheckLayerContent(CheckScope &scope, const Place &place, const std::shared_ptr<AbstractLayer> &layer,
                       const Findings::IDSet &layers)
{
    ContentChecker checker(scope, place, *layer, layers);
    if (const auto *asset = dynamic_cast<const AssetLayer *>(layer.get())) {
        checker.CheckTrackers(asset->Trackers());
        checker.CheckEffects(asset->Effects());
        checker.CheckMasks(asset->Masks());
    } else if (const auto *grade = dynamic_cast<const GradeLayer *>(layer.get())) {
        checker.CheckEffects(grade->Effects());
        checker.CheckMasks(grade->Masks());
    } else if (const auto *text = dynamic_cast<const TextLayer *>(layer.get())) {
        checker.CheckText(*text);
        checker.CheckEffects(text->Effects());
        checker.CheckMasks(text->Masks());
    }
}

} // namespace marlet::project
