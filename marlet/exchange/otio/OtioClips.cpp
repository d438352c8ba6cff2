#include <marlet/exchange/otio/OtioClips.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/otio/OtioKept.h>
#include <marlet/exchange/otio/OtioMedia.h>
#include <marlet/exchange/otio/OtioTransitions.h>
#include <marlet/exchange/otio/OtioUrl.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

constexpr char kSpeed[] = "speed";

Json TimeWarp(double speed)
{
    const bool isFrozen = speed == 0;
    return {{"OTIO_SCHEMA", isFrozen ? "FreezeFrame.1" : "LinearTimeWarp.1"},
            {"metadata", Json::object()},
            {"name", ""},
            {"effect_name", isFrozen ? "FreezeFrame" : "LinearTimeWarp"},
            {"time_scalar", speed}};
}

/// Of other programs' references the one that counts, where the object still shows what it names.
bool StillRefersTo(const Json &kept, const AbstractAsset &asset)
{
    return MemberOf(MemberOf(kept, "references"), TextMemberOf(kept, "active")).is_object() &&
           TextMemberOf(kept, "asset") == asset.ID().ToNarrowString() &&
           TextMemberOf(kept, "file") == ToUtf8(FileOf(asset));
}

/// A relative URL is meant from another folder now.
void Relocate(Json &reference, const AbstractAsset &asset, const WideString &folder)
{
    const WideString file = FileOf(asset);
    if (SchemaOf(reference) == "ExternalReference" && PathOfUrl(SourceOf(reference), folder) != file)
        reference["target_url"] = UrlOfPath(file, folder);
}

/// The first frame of the media. A range that is none, as only a changed project keeps one, is taken out.
double FirstFrameOf(Json &reference, const OtioClock &clock)
{
    try {
        const auto available = clock.RangeOf(MemberOf(reference, "available_range"));
        return available ? available->start : 0;
    } catch (const ExchangeException &) {
        reference["available_range"] = nullptr;
        return 0;
    }
}

} // namespace

void TellKept(const ExchangeOptions &options, const NarrowString &what, const std::vector<kytl::KyID> &ids)
{
    if (!options.load.report)
        return;
    LoadEntry entry;
    entry.severity = LoadEntry::Severity::Loss;
    entry.what = what;
    entry.ids = ids;
    entry.isKept = true;
    options.load.report->Add(std::move(entry));
}

NarrowString GapKey(int start, int end)
{
    return std::to_string(start) + "-" + std::to_string(end);
}

double SpeedOf(const SequenceObject &object)
{
    const auto *const speed = boost::get<double>(&object.Properties().StaticValue(kSpeed));
    return speed && std::isfinite(*speed) ? *speed : 1;
}

OtioClips::OtioClips(const Project &project, const OtioKept &kept, const ExchangeOptions &options)
    : project_(project),
      kept_(kept),
      options_(options),
      rate_(project.Sequence()->Settings().FrameRate()),
      clock_(rate_)
{
}

Json OtioClips::Clip(const SequenceObject &object, int frame, const TextElement &element,
                     const OtioCuts &cuts, const kytl::KyID &track)
{
    const int start = std::max(object.StartFrame(), frame);
    const double length = std::max(0.0, static_cast<double>(object.EndFrame()) - start);
    Json own = {{"object", ProjectPieces::TextWithoutTransitions(element, cuts.slots)}};
    if (object.StartFrame() < frame || object.EndFrame() < object.StartFrame()) {
        own["place"] = {object.StartFrame(), object.EndFrame()};
        TellKept(options_, "that object \"" + ToUtf8(object.Name()) + "\" overlaps others or has no length",
                 {object.ID()});
    }
    // One that names another track than its own goes on to.
    if (object.ParentTrackID() != track)
        own["track"] = track.ToNarrowString();
    const auto *const audio = dynamic_cast<const AudioObject *>(&object);
    Json clip = {{"OTIO_SCHEMA", "Clip.2"},
                 {"metadata", {{kOwnKey, std::move(own)}}},
                 {"name", ToUtf8(object.Name())},
                 {"source_range", nullptr},
                 {"effects", Json::array()},
                 {"markers", Json::array()},
                 {"enabled", !audio || !audio->IsMuted()}};
    if (const double speed = SpeedOf(object); speed != 1)
        clip["effects"].push_back(TimeWarp(speed));
    const double first = AddMedia(object, clip);
    clip["source_range"] = clock_.Range({first + object.AssetInstanceStart(), length});
    const Json &kept = kept_.Of(object.ID(), kKeptItem);
    if (!audio && MemberOf(kept, "enabled").is_boolean())
        clip["enabled"] = MemberOf(kept, "enabled");
    AddForeignPart(clip, kept);
    TellOfUnseen(object, cuts);
    return clip;
}

/// Returns the first frame of the media, from which the clip's are counted.
double OtioClips::AddMedia(const SequenceObject &object, Json &clip)
{
    const auto asset = object.Asset(project_.Assets());
    const Json &kept = kept_.Of(object.ID(), kKeptMedia);
    Json references = Json::object();
    NarrowString key = ActiveReferenceOf(clip).key;
    Json reference;
    if (asset && StillRefersTo(kept, *asset)) {
        references = MemberOf(kept, "references");
        key = TextMemberOf(kept, "active");
        reference = MemberOf(references, key);
        Relocate(reference, *asset, options_.folder);
    }
    const bool isKept = !reference.is_null();
    if (!isKept)
        reference = ReferenceOf(asset.get());
    const double first = FirstFrameOf(reference, clock_);
    if (asset) {
        Json &metadata = reference["metadata"];
        if (!metadata.is_object())
            metadata = Json::object();
        metadata[kOwnKey] = {{"asset", asset->ID().ToNarrowString()}, {"source", SourceOf(reference)}};
        if (isKept)
            metadata[kOwnKey][kForeignKey] = true;
    }
    references[key] = std::move(reference);
    clip["media_references"] = std::move(references);
    clip["active_media_reference_key"] = key;
    return first;
}

const Json &OtioClips::ReferenceOf(const AbstractAsset *asset)
{
    const auto [found, isNew] = references_.try_emplace(asset);
    if (isNew) {
        found->second = ReferenceTo(asset, clock_, rate_, options_.folder);
        if (asset && asset->Type() == AssetType::Composition)
            TellKept(options_, "the layers of composition \"" + ToUtf8(asset->Name()) + "\"", {asset->ID()});
    }
    return found->second;
}

void OtioClips::TellOfUnseen(const SequenceObject &object, const OtioCuts &cuts) const
{
    NarrowString unseen;
    const auto add = [&](const NarrowString &what) { unseen += (unseen.empty() ? "" : ", ") + what; };
    const PropertyManager &properties = object.Properties();
    for (const NarrowString &name : properties.PropertyNames())
        if (name != kSpeed ? !properties.IsDefault(name.c_str()) || properties.HasExpression(name.c_str())
                           : !properties.IsStatic(kSpeed))
            add(name);
    if (!object.Effects().empty())
        add("effects");
    if (cuts.leavesOthers)
        add("transitions");
    if (!unseen.empty())
        TellKept(options_, unseen + " of object \"" + ToUtf8(object.Name()) + "\"", {object.ID()});
}

} // namespace marlet::project
