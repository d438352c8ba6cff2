#include <marlet/exchange/otio/OtioFormat.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObject.h>
#include <marlet/exchange/otio/OtioKept.h>
#include <marlet/exchange/otio/OtioMedia.h>
#include <marlet/exchange/otio/OtioReader.h>
#include <marlet/exchange/otio/OtioWriter.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/QuietPluginManager.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_map>

namespace marlet::project
{

namespace
{

constexpr std::string_view kBlanks = " \t\r\n\xEF\xBB\xBF";

using AssetPointer = std::shared_ptr<AbstractAsset>;

bool HasCompositions(const Project &project)
{
    return !project.Assets().GetByType(AssetType::Composition).empty();
}

AssetPointer FindByFile(const Project &project, const AbstractAsset &asset)
{
    const WideString file = FileOf(asset);
    return project.Assets().All().FindFirst([&](const AssetPointer &other) {
        return !file.empty() && other->Type() == asset.Type() && FileOf(*other) == file;
    });
}

/// Layers go on to find what they show by its ID, so that only assets that no layer shows may be exchanged
/// for those of the same file.
void BringAssets(Edit &edit, const Project &source, const EditorSequence &sequence)
{
    Project &project = *edit.Document();
    std::unordered_map<kytl::KyID, AssetPointer> same;
    edit.TouchAssets();
    edit.TouchRootFolder();
    BinFolder &root = project.Assets().Bin();
    for (const AssetPointer &asset : source.Assets().All()) {
        if (std::as_const(project).Assets().GetByID(asset->ID()))
            continue;
        const AssetPointer known = HasCompositions(source) ? nullptr : FindByFile(project, *asset);
        if (known) {
            same.emplace(asset->ID(), known);
            continue;
        }
        asset->SetParentFolderID(root.ID());
        root.Assets().Add(asset);
        project.Assets().All().Add(asset);
    }
    for (const auto &object : ObjectsOf(sequence))
        if (const auto found = same.find(object->AssetID()); found != same.end())
            static_cast<SequenceObject &>(*object).SetAsset(found->second);
}

} // namespace

NarrowString OtioFormat::Write(const std::shared_ptr<Project> &project, const ExchangeOptions &options) const
{
    Require(project, "project");
    return WriteOtio(project, options);
}

bool OtioFormat::Recognises(std::string_view bytes) const
{
    const std::size_t start = bytes.find_first_not_of(kBlanks);
    return start != std::string_view::npos && bytes[start] == '{' &&
           bytes.find("\"OTIO_SCHEMA\"") != std::string_view::npos;
}

std::shared_ptr<Project> OtioFormat::Read(std::string_view bytes, const ExchangeOptions &options) const
{
    return ReadOtio(bytes, options);
}

void OtioFormat::ReadInto(const std::shared_ptr<Project> &project, std::string_view bytes,
                          const ExchangeOptions &options) const
{
    Edit edit(project, u"Read timeline");
    ExchangeOptions aside = options;
    aside.load.media = project->SharedMedia();
    aside.plugins = QuietPluginManager::Of(project->PluginManager());
    const auto source = ReadOtio(bytes, aside);
    const auto sequence = source->Sequence();
    BringAssets(edit, *source, *sequence);
    edit.TouchProject();
    project->SetSequence(sequence);
    edit.TouchMetadata();
    OtioKept(*source).Store(*project);
    edit.Commit();
}

} // namespace marlet::project
