#include <marlet/project/LoadFindings.h>

#include <marlet/foundation/xml/LoadContext.h>

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/xml/XmlText.h>
#include <marlet/layers/LayerTypes.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <pugixml.hpp>

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Severity = LoadEntry::Severity;

constexpr std::string_view kAssetTags[] = {"SolidAsset", "ImageAsset", "MediaAsset", "CompositionAsset"};
constexpr std::string_view kLayerTags[] = {"AssetLayer", "Effect3DLayer", "CameraLayer", "LightLayer",
                                           "GradeLayer", "PointLayer",    "TextLayer"};
constexpr std::string_view kTrackTags[] = {"VideoTrack", "AudioTrack"};
constexpr std::string_view kObjectTags[] = {"VisualObject", "AudioObject"};

/// What an ID is of. Those of layers count in their composition.
enum class Kind { Asset, Folder, Layer, Mask, Path, Tracker, Effect, Transition, Sequence, Track, Object };

constexpr struct {
    std::string_view tag;
    Kind kind;
} kOwners[] = {{"SolidAsset", Kind::Asset},
               {"ImageAsset", Kind::Asset},
               {"MediaAsset", Kind::Asset},
               {"CompositionAsset", Kind::Asset},
               {"BinFolder", Kind::Folder},
               {"LayerBase", Kind::Layer},
               {"Mask", Kind::Mask},
               {"MotionPath", Kind::Path},
               {"Tracker", Kind::Tracker},
               {"Instance", Kind::Effect},
               {"Transition", Kind::Transition},
               {"EditorSequence", Kind::Sequence},
               {"VideoTrack", Kind::Track},
               {"AudioTrack", Kind::Track},
               {"VisualObject", Kind::Object},
               {"AudioObject", Kind::Object}};

constexpr struct {
    std::string_view owner;
    const char *field;
    Kind kind;
    const char *what;
} kReferences[] = {{"SolidAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"ImageAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"MediaAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"CompositionAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"BinFolder", "ParentFolderID", Kind::Folder, "the folder around the folder"},
                   {"LayerBase", "CompID", Kind::Asset, "the composition of the layer"},
                   {"LayerBase", "ParentLayerID", Kind::Layer, "the parent of the layer"},
                   {"AssetLayer", "AssetID", Kind::Asset, "the asset of the layer"},
                   {"Mask", "LayerID", Kind::Layer, "the layer of the mask"},
                   {"MotionPath", "ParentID", Kind::Mask, "the mask of the outline"},
                   {"Point", "ParentPathID", Kind::Path, "the outline of the point"},
                   {"Tracker", "ParentLayerID", Kind::Layer, "the layer of the tracker"},
                   {"Tracker", "DestinationLayerID", Kind::Layer, "the destination of the tracker"},
                   {"Primary", "ParentTrackerID", Kind::Tracker, "the tracker of the point"},
                   {"Secondary", "ParentTrackerID", Kind::Tracker, "the tracker of the point"},
                   {"VisualObject", "AssetID", Kind::Asset, "the asset of the object"},
                   {"AudioObject", "AssetID", Kind::Asset, "the asset of the object"},
                   {"VisualObject", "SequenceID", Kind::Sequence, "the sequence of the object"},
                   {"AudioObject", "SequenceID", Kind::Sequence, "the sequence of the object"},
                   {"VisualObject", "ParentTrackID", Kind::Track, "the track of the object"},
                   {"AudioObject", "ParentTrackID", Kind::Track, "the track of the object"},
                   {"VisualObject", "LinkedObjectID", Kind::Object, "the object that is linked"},
                   {"AudioObject", "LinkedObjectID", Kind::Object, "the object that is linked"},
                   {"Transition", "FromObjectID", Kind::Object, "the object in front of the transition"},
                   {"Transition", "ToObjectID", Kind::Object, "the object behind the transition"}};

constexpr int kUpToEight[] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
constexpr int kSampleRates[] = {8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000};
constexpr int kAutoOrientations[] = {0, 1, 4};

constexpr std::span<const int> UpTo(int highest)
{
    return std::span(kUpToEight).first(static_cast<std::size_t>(highest) + 1);
}

/// The numbers that stand for something. Where the host names them, any may.
const struct {
    std::string_view owner; ///< empty for whatever has such a field
    const char *field;
    std::span<const int> numbers;
} kChoices[] = {{"", "Dimensions", UpTo(static_cast<int>(LayerDimensions::ThreeDContent))},
                {"", "AutoOrient", kAutoOrientations},
                {"", "AssetType", UpTo(static_cast<int>(AssetType::Composition))},
                {"", "AudioSampleRate", kSampleRates},
                {"", "Fields", UpTo(static_cast<int>(VideoFields::HighDefinitionInterlaced))},
                {"", "PAR", UpTo(static_cast<int>(PAR::Custom))},
                {"Tracker", "Type", UpTo(static_cast<int>(Tracker::TrackerType::TwoPoints))},
                {"Tracker", "Method", UpTo(static_cast<int>(Tracker::TrackerMethod::TemplateMatching))},
                {"Primary", "Type", UpTo(static_cast<int>(TrackingPoint::TrackingPointType::Secondary))},
                {"Secondary", "Type", UpTo(static_cast<int>(TrackingPoint::TrackingPointType::Secondary))}};

/// In pixels, of a width or a height: what no picture has.
constexpr int kTooLarge = 1 << 16;

/// A composition's place in the text stands for it: IDs may be repeated.
struct Identity {
    kytl::KyID id;
    Kind kind;
    const void *scope;

    bool operator==(const Identity &) const = default;
};

struct Hash {
    std::size_t operator()(const Identity &identity) const
    {
        return std::hash<kytl::KyID>()(identity.id) ^
               (std::hash<const void *>()(identity.scope) + static_cast<std::size_t>(identity.kind));
    }
};

/// That of an element that was read, up to a comment in it.
std::string_view TextOf(const XmlCursor &element)
{
    return pugi::xml_node(element.Node()).child_value();
}

/// The names of what is of one kind in one place.
struct Names {
    std::unordered_set<std::string_view> known;
    XmlCursor firstRepeated;
    std::size_t repeated = 0;

    void Add(const XmlCursor &name)
    {
        const std::string_view text = TextOf(name);
        if (text.empty() || known.insert(text).second)
            return;
        if (repeated++ == 0)
            firstRepeated = name;
    }
};

class Walk
{
public:
    explicit Walk(LoadContext &context) : context_(context) {}

    /// Visits an element and all below it that was read, with the composition that they are in.
    template <class Visit> void Below(const XmlCursor &element, const void *composition, const Visit &visit)
    {
        if (!context_.IsKnown(element))
            return;
        if (element.Is("CompositionAsset"))
            composition = element.Node();
        visit(element, composition);
        for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
            Below(child, composition, visit);
    }

    void Collect(const XmlCursor &element, const void *composition)
    {
        for (const auto &[tag, kind] : kOwners) {
            if (element.Name() != tag)
                continue;
            // Most of the others are named by what they are.
            if (kind == Kind::Asset || kind == Kind::Layer)
                names_[Scope(kind, composition)].Add(element.Find("Name"));
            const std::optional<kytl::KyID> id = element.FindID("ID");
            if (id && !identities_.insert({*id, kind, Scope(kind, composition)}).second)
                context_.Add(Severity::Warning, element.Find("ID"), "the ID is that of another one too",
                             {*id});
        }
    }

    /// One note for each place, since there may be many.
    void TellOfNames()
    {
        for (const auto &[scope, names] : names_)
            if (names.repeated == 1)
                context_.Add(Severity::Note, names.firstRepeated, "the name is that of another one too");
            else if (names.repeated > 1)
                context_.Add(Severity::Note, names.firstRepeated,
                             "the name is that of another one too, as are " +
                                 std::to_string(names.repeated - 1) + " more of its kind");
    }

    void CheckNumbers(const XmlCursor &element)
    {
        for (const auto &[owner, field, numbers] : kChoices)
            if (owner.empty() || element.Name() == owner)
                if (const auto number = NumberIn(element, field);
                    number && std::ranges::find(numbers, *number) == numbers.end())
                    TellOfChoice(element.Find(field), field, *number);
        for (const char *field : {"Width", "Height"})
            if (const auto number = NumberIn(element, field); number && (*number < 0 || *number >= kTooLarge))
                context_.Add(Severity::Warning, element.Find(field),
                             NarrowString(field) + " is " + std::to_string(*number) +
                                 ", which no picture has; it is kept as it is");
    }

    void Check(const XmlCursor &element, const void *composition)
    {
        CheckNumbers(element);
        for (const auto &[owner, field, kind, what] : kReferences)
            if (element.Name() == owner)
                CheckReference(element, field, kind, composition, what);
        if (element.Name() == "Instance") {
            CheckReference(element, "ParentID", composition ? Kind::Layer : Kind::Object, composition,
                           "what has the effect");
            CheckReference(element, "ParentTimelineID", composition ? Kind::Asset : Kind::Sequence,
                           composition, "the timeline of the effect");
        }
        if (element.Name() == "ViewerState")
            CheckViews(element);
    }

    /// Those of plug-ins and 3D effects.
    void CheckLayersNamed()
    {
        for (const XmlCursor &value : context_.LayersNamed()) {
            pugi::xml_node around(value.Node());
            while (around && std::string_view(around.name()) != "CompositionAsset")
                around = around.parent();
            if (around)
                CheckReference(value, "KyID", Kind::Layer, around.internal_object(),
                               "the layer that the property names");
        }
    }

private:
    /// None for what is no number, which was told of when it was read.
    static std::optional<int> NumberIn(const XmlCursor &element, const char *field)
    {
        const std::string_view text = TextOf(element.Find(field));
        return IsInt(text) ? std::optional(ParseInt(text)) : std::nullopt;
    }

    void CheckReference(const XmlCursor &element, const char *field, Kind kind, const void *composition,
                        const char *what)
    {
        const std::optional<kytl::KyID> id = element.FindID(field);
        if (id && !id->IsNull() && !identities_.contains({*id, kind, Scope(kind, composition)}) &&
            !IsKept(*id))
            context_.Add(Severity::Warning, element.Find(field), NarrowString(what) + " is not there",
                         WithOwners(*id, element));
    }

    /// Behind an ID those of the objects that an element is in, from the inside out.
    static std::vector<kytl::KyID> WithOwners(const kytl::KyID &id, const XmlCursor &element)
    {
        std::vector<kytl::KyID> ids{id};
        for (pugi::xml_node node(element.Node()); node; node = node.parent()) {
            const XmlCursor around(node.internal_object());
            const XmlCursor base = around.Find("LayerBase");
            if (const auto own = (base.IsNull() ? around : base).FindID("ID"); own && own != ids.back())
                ids.push_back(*own);
        }
        return ids;
    }

    /// Each position names one of the views.
    void CheckViews(const XmlCursor &viewer)
    {
        std::unordered_set<std::string_view> views;
        for (XmlCursor view = viewer.Find("Views").Find("State"); !view.IsNull(); view = view.Next("State"))
            views.insert(view.AttributeText("ID"));
        for (XmlCursor layout = viewer.FirstChild(); !layout.IsNull(); layout = layout.Next())
            for (const char *position : {"Pos0", "Pos1", "Pos2", "Pos3"})
                if (const std::string_view id = layout.AttributeText(position);
                    context_.IsKnown(layout) && !id.empty() && !views.contains(id))
                    context_.Add(Severity::Warning, layout,
                                 NarrowString("the view at ") + position + " is not there",
                                 {kytl::KyID::FromString(id)});
    }

    static const void *Scope(Kind kind, const void *composition)
    {
        return kind == Kind::Layer ? composition : nullptr;
    }

    LoadContext &context_;
    std::unordered_set<Identity, Hash> identities_;
    std::unordered_map<const void *, Names> names_; ///< by composition, of assets by null
};

} // namespace

void TakeObjectsKept(LoadContext &context, const XmlCursor &project)
{
    if (!context.KeepsUnknown())
        return;
    const auto take = [&context](const XmlCursor &list, std::span<const std::string_view> known) {
        for (XmlCursor child = list.FirstChild(); !child.IsNull(); child = child.Next())
            if (std::ranges::find(known, child.Name()) == known.end())
                context.TakeIDs(child);
    };
    const XmlCursor assets = project.Find("AssetList").Find("Assets");
    take(assets, kAssetTags);
    for (XmlCursor asset = assets.FirstChild(); !asset.IsNull(); asset = asset.Next())
        if (asset.Name() == "CompositionAsset")
            take(asset.Find("Layers"), kLayerTags);
    for (const char *tracks : {"Video", "Audio"}) {
        const XmlCursor list = project.Find("EditorSequence").Find(tracks);
        for (XmlCursor track = list.FirstChild(); !track.IsNull(); track = track.Next())
            if (std::ranges::find(kTrackTags, track.Name()) != std::end(kTrackTags))
                take(track.Find("Objects"), kObjectTags);
    }
}

void TellOfOddities(LoadContext &context, const XmlCursor &project)
{
    Walk walk(context);
    walk.Below(project, nullptr, [&walk](const XmlCursor &element, const void *composition) {
        walk.Collect(element, composition);
    });
    walk.Below(project, nullptr, [&walk](const XmlCursor &element, const void *composition) {
        walk.Check(element, composition);
    });
    walk.CheckLayersNamed();
    walk.TellOfNames();
}

} // namespace marlet::project
