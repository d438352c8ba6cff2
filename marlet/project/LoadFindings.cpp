#include <marlet/project/LoadFindings.h>

#include <marlet/foundation/xml/LoadContext.h>

#include <optional>
#include <string_view>
#include <unordered_set>

namespace marlet::project
{

namespace
{

using Severity = LoadEntry::Severity;

/// What an ID is of. Those of layers count in their composition.
enum class Kind { Asset, Folder, Layer, Mask, Tracker, Effect, Transition, Track, Object };

constexpr struct {
    std::string_view tag;
    Kind kind;
} kOwners[] = {{"SolidAsset", Kind::Asset},    {"ImageAsset", Kind::Asset},
               {"MediaAsset", Kind::Asset},    {"CompositionAsset", Kind::Asset},
               {"BinFolder", Kind::Folder},    {"LayerBase", Kind::Layer},
               {"Mask", Kind::Mask},           {"Tracker", Kind::Tracker},
               {"Instance", Kind::Effect},     {"Transition", Kind::Transition},
               {"VideoTrack", Kind::Track},    {"AudioTrack", Kind::Track},
               {"VisualObject", Kind::Object}, {"AudioObject", Kind::Object}};

constexpr struct {
    std::string_view owner;
    const char *field;
    Kind kind;
    const char *what;
} kReferences[] = {{"SolidAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"ImageAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"MediaAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"CompositionAsset", "ParentFolderID", Kind::Folder, "the folder of the asset"},
                   {"LayerBase", "ParentLayerID", Kind::Layer, "the parent of the layer"},
                   {"AssetLayer", "AssetID", Kind::Asset, "the asset of the layer"},
                   {"Tracker", "DestinationLayerID", Kind::Layer, "the destination of the tracker"},
                   {"VisualObject", "AssetID", Kind::Asset, "the asset of the object"},
                   {"AudioObject", "AssetID", Kind::Asset, "the asset of the object"},
                   {"VisualObject", "LinkedObjectID", Kind::Object, "the object that is linked"},
                   {"AudioObject", "LinkedObjectID", Kind::Object, "the object that is linked"},
                   {"Transition", "FromObjectID", Kind::Object, "the object in front of the transition"},
                   {"Transition", "ToObjectID", Kind::Object, "the object behind the transition"}};

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

std::optional<kytl::KyID> IDIn(const XmlCursor &element, const char *field)
{
    const XmlCursor child = element.Find(field);
    if (child.IsNull())
        return std::nullopt;
    try {
        kytl::KyID id;
        child.Get(id);
        return id;
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

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
            const std::optional<kytl::KyID> id = IDIn(element, "ID");
            if (id && !identities_.insert({*id, kind, Scope(kind, composition)}).second)
                context_.Add(Severity::Warning, element.Find("ID"), "the ID is that of another one too",
                             {*id});
        }
    }

    void Check(const XmlCursor &element, const void *composition)
    {
        for (const auto &[owner, field, kind, what] : kReferences) {
            if (element.Name() != owner)
                continue;
            const std::optional<kytl::KyID> id = IDIn(element, field);
            if (id && !id->IsNull() && !identities_.contains({*id, kind, Scope(kind, composition)}))
                context_.Add(Severity::Warning, element.Find(field), NarrowString(what) + " is not there",
                             {*id});
        }
    }

private:
    static const void *Scope(Kind kind, const void *composition)
    {
        return kind == Kind::Layer ? composition : nullptr;
    }

    LoadContext &context_;
    std::unordered_set<Identity, Hash> identities_;
};

} // namespace

void TellOfIDs(LoadContext &context, const XmlCursor &project)
{
    Walk walk(context);
    walk.Below(project, nullptr, [&walk](const XmlCursor &element, const void *composition) {
        walk.Collect(element, composition);
    });
    walk.Below(project, nullptr, [&walk](const XmlCursor &element, const void *composition) {
        walk.Check(element, composition);
    });
}

} // namespace marlet::project
