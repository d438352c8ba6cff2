#include <marlet/compare/Apply.h>

#include <marlet/compare/CompareElements.h>
#include <marlet/compare/ElementNames.h>
#include <marlet/compare/Update.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/history/Parts.h>
#include <marlet/operations/OperationException.h>
#include <marlet/plugins/QuietPluginManager.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

std::shared_ptr<Project> ReadAside(const Project &project, const WideString &text,
                                   const Abstract3DEffectFactory &effectFactory)
{
    const auto plugins = QuietPluginManager::Of(project.PluginManager());
    const LoadOptions options{.media = project.SharedMedia(), .keepUnknown = true};
    return Project::CreateFromXml(text, project.TextureImageCache().TexturesFolderPath(), plugins,
                                  effectFactory, options);
}

void Run(const Update &update, const ElementPair &root)
{
    update.edit.TouchProject();
    TakeOver(*update.project, update.fresh);
    if (!root.Child("Metadata").IsSame()) {
        update.edit.TouchMetadata();
        update.project->Metadata().Swap(update.fresh.Metadata());
    }
    const ElementPair assets = root.Child("AssetList");
    UpdateAssets(update, assets);
    if (!assets.IsSame())
        UpdateFolders(update, assets.Child("BinFolder"));
    UpdateSequence(update, root.Child("EditorSequence"));
    UpdateInstances(update, assets.after.Child("Assets"));
}

[[noreturn]] void Refuse(const Difference &difference)
{
    NarrowString place;
    for (const NarrowString &step : difference.place)
        place += step + ", ";
    throw OperationException("The project cannot take over " + place +
                             (difference.what.empty() ? "what differs in it" : difference.what));
}

} // namespace

std::vector<std::pair<kytl::KyID, ElementPair>> ObjectsIn(const ElementPair &list)
{
    const auto idOf = [](const TextElement &element) {
        const NarrowString id = BaseOf(element).ChildText("ID");
        return id.empty() ? kytl::KyID() : kytl::KyID::FromString(id);
    };
    std::unordered_map<kytl::KyID, TextElement> before;
    for (const TextElement &element : list.before.Children())
        before.emplace(idOf(element), element);
    std::vector<std::pair<kytl::KyID, ElementPair>> objects;
    for (const TextElement &element : list.after.Children()) {
        const kytl::KyID id = idOf(element);
        const auto found = before.find(id);
        objects.emplace_back(id, ElementPair{found == before.end() ? TextElement() : found->second, element});
    }
    return objects;
}

bool Update::Exchanges(const ElementPair &object) const
{
    if (inPlace || object.IsSame())
        return false;
    // What is in these is exchanged by itself.
    constexpr std::string_view kLists[] = {"Effects", "Masks",  "Trackers", "Layers",   "Video",
                                           "Audio",   "Points", "InTrans",  "OutTrans", "Instances"};
    const auto isInList = [&](const Difference &difference) {
        return std::any_of(difference.path.begin(), difference.path.end(), [&](const NarrowString &step) {
            return std::find(std::begin(kLists), std::end(kLists), step) != std::end(kLists);
        });
    };
    const std::vector<Difference> differences = CompareElements(object.before, object.after);
    return !std::all_of(differences.begin(), differences.end(), isInList);
}

void Apply(const std::shared_ptr<Project> &project, const std::vector<Difference> &differences,
           const Abstract3DEffectFactory &effectFactory, const WideString &label)
{
    Require(project, "project");
    if (differences.empty())
        return;
    Edit edit(project, label);
    auto current = std::make_unique<DocumentText>(project->SerializeUtf8());
    const DocumentText target(Patched(current->Root(), differences));
    const WideString text = FromUtf8(target.Text());
    for (const bool inPlace : {true, false}) {
        if (current->Text() == target.Text())
            break;
        const std::shared_ptr<Project> fresh = ReadAside(*project, text, effectFactory);
        Run({edit, project, *fresh, inPlace}, {current->Root(), target.Root()});
        current = std::make_unique<DocumentText>(project->SerializeUtf8());
    }
    const std::vector<Difference> left = CompareElements(current->Root(), target.Root());
    if (!left.empty())
        Refuse(left.front());
    edit.Commit();
}

} // namespace marlet::project
