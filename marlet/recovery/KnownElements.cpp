#include <marlet/recovery/KnownElements.h>

#include <marlet/recovery/DamagedText.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr std::string_view kProperty = "property of a PropertyManager";
constexpr std::string_view kFolderAssets = "Assets of a BinFolder";

/// What a new object has none of.
constexpr std::pair<std::string_view, std::string_view> kOthers[] = {
    {kProperty, "Default"},
    {kProperty, "Static"},
    {kProperty, "Animation"},
    {kProperty, "Expression"},
    {"Animation", "Key"},
    {"Key", "Value"},
    {"Key", "IncomingPt"},
    {"Key", "OutgoingPt"},
    {"Layers", "Effect3DLayer"},
    {"SubFolders", "BinFolder"},
    {kFolderAssets, "ID"},
    {"Effects", "Instance"},
    {"Tokens", "Tk"},
    {"Formats", "Format"},
    {"InTrans", "Transition"},
    {"OutTrans", "Transition"},
    {"Instance", "ID"},
    {"Instance", "Name"},
    {"Instance", "PluginID"},
    {"Instance", "PluginName"},
    {"Instance", "PluginVersion"},
    {"Instance", "ParentID"},
    {"Instance", "ParentTimelineID"},
    {"Instance", "Enabled"},
    {"Instance", "PropertyManager"},
    {"Instance", "UIState"},
    {"Instance", "InstanceBytes"},
    {"UIState", "Property"},
    {"Transition", "ID"},
    {"Transition", "PluginID"},
    {"Transition", "PluginName"},
    {"Transition", "PluginVersion"},
    {"Transition", "FromObjectID"},
    {"Transition", "ToObjectID"},
    {"Transition", "Length"},
    {"Transition", "RelativeStart"},
    {"Transition", "PropertyManager"},
    {"Transition", "UIState"},
    {"Transition", "InstanceBytes"},
    {"Views", "State"},
};

/// What is looked up by its own tag, wherever it stands.
constexpr std::string_view kObjects[] = {
    "Project",   "CompositionAsset", "SolidAsset",  "ImageAsset", "MediaAsset",   "BinFolder",  "AssetLayer",
    "TextLayer", "GradeLayer",       "CameraLayer", "LightLayer", "PointLayer",   "Mask",       "Point",
    "Tracker",   "EditorSequence",   "VideoTrack",  "AudioTrack", "VisualObject", "AudioObject"};

} // namespace

bool KnownElements::IsObject(std::string_view tag)
{
    return std::ranges::find(kObjects, tag) != std::end(kObjects);
}

const KnownElements &KnownElements::Get()
{
    static const KnownElements known;
    return known;
}

KnownElements::KnownElements() : model_(ModelProjectText())
{
    DamagedText(model_, nullptr).Read();
    Learn(model_.Root());
    for (const auto &[tag, child] : kOthers)
        children_[tag].insert(child);
    for (const auto &[tag, model] : models_)
        if (model->parent && HoldsItems(model->parent->name))
            surroundings_.emplace(tag, MakeSurroundings(*model->parent));
}

void KnownElements::Learn(const RecoveredElement &element)
{
    if (IsObject(element.name))
        models_.emplace(element.name, &element);
    // What stands in a value is of its alternative alone, and properties differ from object to object.
    if (element.IsInside("PropertyManager"))
        return;
    std::set<std::string_view> &children = children_[element.name];
    for (const RecoveredElement *child : element.children) {
        if (element.name != "PropertyManager")
            children.insert(child->name);
        Learn(*child);
    }
}

std::string_view KnownElements::KindOf(const RecoveredElement &element) const
{
    if (element.IsInside("PropertyManager"))
        return kProperty;
    return element.name == "Assets" && element.IsInside("BinFolder") ? kFolderAssets : element.name;
}

bool KnownElements::IsKnown(const RecoveredElement &element) const
{
    return children_.contains(KindOf(element));
}

bool KnownElements::IsContainer(const RecoveredElement &element) const
{
    constexpr std::string_view kOfLists[] = {"PropertyManager", "Masks",    "Trackers",   "Points",
                                             "Objects",         "Effects",  "SubFolders", "Views",
                                             "InTrans",         "OutTrans", "Assets"};
    const auto found = children_.find(KindOf(element));
    return (found != children_.end() && !found->second.empty()) ||
           std::ranges::find(kOfLists, element.name) != std::end(kOfLists);
}

bool KnownElements::HasChild(const RecoveredElement &element, std::string_view tag) const
{
    const auto found = children_.find(KindOf(element));
    return found != children_.end() && found->second.contains(tag);
}

const RecoveredElement *KnownElements::ModelOf(const RecoveredElement &element) const
{
    if (const auto found = models_.find(element.name); found != models_.end() && IsObject(element.name))
        return found->second;
    const RecoveredElement *const around = element.parent ? ModelOf(*element.parent) : nullptr;
    return around ? around->Child(element.name) : nullptr;
}

std::string_view KnownElements::ModelText(const RecoveredElement &model) const
{
    return model_.Text().substr(model.start, model.end - model.start);
}

KnownElements::Surroundings KnownElements::MakeSurroundings(const RecoveredElement &list) const
{
    Surroundings made;
    for (const RecoveredElement *around = &list; around; around = around->parent) {
        std::string start = "<" + std::string(around->name) + std::string(around->attributes) + ">";
        for (const RecoveredElement *child : around->children)
            if (around != &list && (child->name == "BinFolder" || !IsContainer(*child)))
                start += ModelText(*child);
        made.before.insert(0, start);
        made.behind += "</" + std::string(around->name) + ">";
    }
    return made;
}

const KnownElements::Surroundings *KnownElements::Around(std::string_view itemTag) const
{
    // Any layer, also one of a class that a new project has none of, stands where a point layer does.
    const auto found =
        surroundings_.find(itemTag.ends_with("Layer") ? std::string_view("PointLayer") : itemTag);
    return found == surroundings_.end() ? nullptr : &found->second;
}

} // namespace marlet::project
