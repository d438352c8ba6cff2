#include <marlet/recovery/Repair.h>

#include <marlet/foundation/KyID.h>
#include <marlet/recovery/KnownElements.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

using Severity = LoadEntry::Severity;

/// What its parent can be without.
bool IsOptional(std::string_view tag)
{
    constexpr std::string_view kTags[] = {
        "ProjectSettings", "AssetList",   "EditorSequence", "Metadata", "AudioVideoSettings",
        "RenderSettings",  "ViewerState", "MotionPath",     "UIState",  "InstanceBytes",
        "Expression",      "BinFolder",   "Primary",        "Secondary"};
    return std::ranges::find(kTags, tag) != std::end(kTags);
}

/// Which child of an object refers to which object that it stands in.
constexpr std::pair<std::string_view, std::string_view> kReferences[] = {
    {"CompositionAsset", "CompID"},   {"VideoTrack", "ParentTrackID"}, {"AudioTrack", "ParentTrackID"},
    {"EditorSequence", "SequenceID"}, {"MotionPath", "ParentPathID"},  {"Tracker", "ParentTrackerID"},
    {"LayerBase", "LayerID"},
};

const RecoveredElement *FindBelow(const RecoveredElement &element, std::string_view tag)
{
    for (const RecoveredElement *child : element.children) {
        if (child->name == tag && !child->content.empty())
            return child;
        if (const RecoveredElement *const found = FindBelow(*child, tag))
            return found;
    }
    return nullptr;
}

bool IsId(std::string_view text)
{
    constexpr std::size_t kSize = 36;
    return text.size() == kSize && text[8] == '-' && text[13] == '-';
}

} // namespace

void Repair::Tell(Severity severity, const RecoveredElement &element, std::string what)
{
    faults_.Add({severity, element.start, &element, std::move(what)});
}

bool Repair::Mend(RecoveredElement &written, const LoadFailure &failure)
{
    RecoveredElement *at = failure.place ? &tree_.At(written, *failure.place) : &written;
    if (!failure.missingChild.empty()) {
        RecoveredElement *const owner = OwnerOf(*at, failure.missingChild);
        if (owner && PutIn(*owner, failure.missingChild))
            return true;
        at = owner ? owner : at;
    } else if (!failure.missingAttribute.empty() && PutInAttribute(*at, failure.missingAttribute)) {
        return true;
    }
    return Drop(*at, failure.words);
}

/// The nearest element from one outwards that ought to have a child and has none.
RecoveredElement *Repair::OwnerOf(RecoveredElement &from, const std::string &tag) const
{
    for (RecoveredElement *owner = &from; owner; owner = owner->parent) {
        const RecoveredElement *const model = known_.ModelOf(*owner);
        const bool ought = known_.HasChild(*owner, tag) || (model && model->Child(tag));
        if (ought && !owner->Child(tag))
            return owner;
    }
    return nullptr;
}

/// Puts in what a new object has, but no more than a value, a property with its values, or a folder: what has
/// more to it is not made up. Nor is anything put into what the text ends in, unless others stand in it.
bool Repair::PutIn(RecoveredElement &owner, const std::string &tag)
{
    const RecoveredElement *const model = known_.ModelOf(owner);
    const RecoveredElement *const wanted = model ? model->Child(tag) : nullptr;
    if (!wanted)
        return false;
    const bool isMadeUp = tag == "BinFolder" || tag == "Default" || tag == "Static";
    if (!isMadeUp && !wanted->children.empty() && owner.name != "PropertyManager")
        return false;
    const bool holdsOthers = std::ranges::any_of(owner.children, [](const RecoveredElement *child) {
        return HoldsItems(child->name) || child->name == "Assets" || child->name == "AssetList" ||
               child->name == "Video" || child->name == "Audio";
    });
    if (owner.isCut && !holdsOthers && owner.name != "Project" && owner.name != "BinFolder")
        return false;

    RecoveredElement &made = tree_.Make();
    made.name = tree_.Keep(tag);
    made.attributes = wanted->attributes;
    made.isMade = true;
    made.start = owner.start;
    std::string_view content = wanted->content;
    if (IsId(content))
        content = tree_.Keep(IdFor(owner, tag));
    if (tag == "BinFolder") {
        made.content = tree_.Keep(RootFolder(owner));
    } else if (wanted->children.empty()) {
        made.content = content;
    } else {
        const std::string_view text = known_.ModelText(*wanted);
        const std::size_t from = text.find('>') + 1;
        made.content = text.substr(from, text.rfind("</") - from);
    }
    made.isIntact = false;
    tree_.Spoil(&owner);
    made.parent = &owner;
    owner.children.insert(owner.children.begin(), &made);
    Tell(Severity::Warning, made,
         tag + " is missing; " +
             (tag == "BinFolder"         ? "a folder with all assets stands in for it"
              : wanted->children.empty() ? "\"" + std::string(content) + "\" stands in for it"
                                         : "that of a new object stands in for it"));
    return true;
}

/// The content of a folder that has all the assets of a list.
std::string Repair::RootFolder(const RecoveredElement &assetList)
{
    const RecoveredElement *const assets = assetList.Child("Assets");
    std::string id = kytl::KyID::Generate().ToNarrowString();
    std::string ids;
    for (const RecoveredElement *asset : assets ? assets->children : std::vector<RecoveredElement *>()) {
        const RecoveredElement *const own = asset->Child("ID");
        const RecoveredElement *const folder = asset->Child("ParentFolderID");
        if (own && IsId(own->content))
            ids += "<ID>" + std::string(own->content) + "</ID>";
        if (folder && IsId(folder->content))
            id = folder->content;
    }
    return "<ID>" + id + "</ID><IsExpanded>0</IsExpanded><Name>Root</Name><ParentFolderID>" +
           kytl::KyID().ToNarrowString() + "</ParentFolderID><Assets>" + ids + "</Assets><SubFolders/>";
}

/// An ID that objects around or below have in common with the one that is lost, a new one, or none.
std::string Repair::IdFor(const RecoveredElement &owner, std::string_view tag) const
{
    for (const auto &[object, reference] : kReferences) {
        if (tag == "ID" && owner.name == object)
            if (const RecoveredElement *const found = FindBelow(owner, reference))
                return std::string(found->content);
        if (tag != reference)
            continue;
        for (const RecoveredElement *around = &owner; around; around = around->parent)
            if (const RecoveredElement *const id = around->name == object ? around->Child("ID") : nullptr)
                return std::string(id->content);
    }
    return (tag == "ID" ? kytl::KyID::Generate() : kytl::KyID()).ToNarrowString();
}

bool Repair::PutInAttribute(RecoveredElement &element, const std::string &name)
{
    if (name != "Version")
        return false;
    const RecoveredElement *const model = known_.ModelOf(element);
    const std::string_view version =
        model && !model->attributes.empty() ? model->attributes : " Version=\"0\"";
    element.attributes = tree_.Keep(std::string(element.attributes) + std::string(version));
    tree_.Spoil(&element);
    Tell(Severity::Loss, element, "the version is missing; the one that is written today stands in for it");
    return true;
}

bool Repair::Drop(RecoveredElement &element, const std::string &words)
{
    RecoveredElement *dropped = &element;
    const auto canGo = [this](const RecoveredElement &candidate) {
        if (candidate.isMade || !candidate.parent)
            return false;
        if (IsList(candidate.parent->name) || IsOptional(candidate.name) || candidate.parent == &tree_.Root())
            return true;
        // A value that is put in again, where that is done.
        const RecoveredElement *const model = known_.ModelOf(candidate);
        return model && !known_.IsContainer(candidate) && !candidate.parent->isCut;
    };
    while (dropped->parent && !canGo(*dropped))
        dropped = dropped->parent;
    if (!dropped->parent) {
        // Nothing in particular is at fault: all goes but what every project has.
        RecoveredElement &root = *dropped;
        const auto last = std::find_if(root.children.rbegin(), root.children.rend(),
                                       [](const RecoveredElement *child) { return !child->isMade; });
        if (last == root.children.rend())
            return false;
        dropped = *last;
    }
    Tell(Severity::Loss, *dropped, std::string(dropped->name) + " is dropped: " + words);
    tree_.Remove(*dropped);
    return true;
}

} // namespace marlet::project
