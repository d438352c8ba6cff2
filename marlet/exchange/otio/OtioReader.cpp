#include <marlet/exchange/otio/OtioReader.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/otio/OtioObjects.h>
#include <marlet/exchange/otio/OtioPlan.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/plugins/QuietPluginManager.h>
#include <marlet/project/MediaPaths.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <new>
#include <optional>

namespace marlet::project
{

namespace
{

struct NoEffects final : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override { return {}; }
};

/// The timeline of a text, whatever it is packed in.
Json TakeTimeline(Json &json, const ExchangeOptions &options)
{
    const std::string_view schema = SchemaOf(json);
    if (schema == "Timeline" && MemberOf(json, "tracks").is_object())
        return std::move(json);
    if (schema == "Stack")
        return {{"OTIO_SCHEMA", "Timeline.1"}, {"name", MemberOf(json, "name")}, {"tracks", std::move(json)}};
    if (schema == "Track" || schema == "Clip") {
        Json children = Json::array();
        children.push_back(std::move(json));
        return {{"OTIO_SCHEMA", "Timeline.1"},
                {"tracks", {{"OTIO_SCHEMA", "Stack.1"}, {"children", std::move(children)}}}};
    }
    if (schema != "SerializableCollection" || ChildrenOf(json).empty())
        throw ExchangeException("The text has no timeline");
    if (const std::size_t others = ChildrenOf(json).size() - 1; others > 0)
        Tell(options, LoadEntry::Severity::Loss,
             std::to_string(others) + " of the collection's objects: its first timeline is taken");
    for (Json &child : json["children"])
        if (SchemaOf(child) == "Timeline")
            return TakeTimeline(child, options);
    return TakeTimeline(json["children"].front(), options);
}

/// Places in the text of the project mean nothing to whoever has the other text.
void Forward(const LoadReport &from, LoadReport *to)
{
    if (!to)
        return;
    for (LoadEntry entry : from.Entries()) {
        entry.line = 0;
        entry.column = 0;
        entry.offset = 0;
        to->Add(std::move(entry));
    }
    for (const UnresolvedPlugin &plugin : from.UnresolvedPlugins())
        for (int use = 0; use < plugin.uses; ++use)
            to->AddUse(plugin);
}

std::shared_ptr<Project> Load(const NarrowString &text, const ExchangeOptions &options)
{
    const NoEffects none;
    LoadReport report;
    LoadOptions load = options.load;
    load.report = &report;
    std::optional<MediaPaths> paths;
    if (!options.folder.empty())
        paths.emplace(ToUtf8(options.folder), load.findMovedMedia);
    const WideString &textures = load.texturesFolder.empty() ? options.folder : load.texturesFolder;
    try {
        auto project =
            Project::CreateFromXml(FromUtf8(text), textures, QuietPluginManager::Of(options.plugins),
                                   options.effects ? *options.effects : none, load);
        Forward(report, options.load.report);
        return project;
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        throw ExchangeException(NarrowString("The project in the metadata: ") + error.what());
    }
}

/// A sequence whose clips end where they did stays as long as it was, whatever that is.
void SetLength(EditorSequence &sequence, bool hasProject, const Json &formerEnd,
               const ExchangeOptions &options)
{
    int end = 0;
    for (const auto &object : ObjectsOf(sequence))
        end = std::max(end, object->EndFrame());
    AudioVideoSettings &settings = sequence.Settings();
    if (end <= settings.FrameCount() || (hasProject && formerEnd == end))
        return;
    settings.SetFrameCount(end);
    if (hasProject)
        Tell(options, LoadEntry::Severity::Warning,
             "the sequence is as long as its clips now: " + std::to_string(end) + " frames");
    else
        sequence.SetOutPoint(end);
}

void SetNames(Project &project, bool hasProject, const NarrowString &text)
{
    const WideString name = FromUtf8(text);
    EditorSequence &sequence = *project.Sequence();
    if (hasProject ? name != sequence.Name() : !name.empty())
        sequence.SetName(name);
    if (!hasProject)
        project.SetName(name);
}

} // namespace

std::shared_ptr<Project> ReadOtio(std::string_view bytes, const ExchangeOptions &options)
{
    Json json = ParseJson(bytes);
    const Json timeline = TakeTimeline(json, options);
    OtioPlan plan(timeline, options);
    const auto project = Load(plan.ProjectText(), options);
    OtioObjects objects(*project, plan, options);
    objects.Run();
    SetLength(*project->Sequence(), plan.HasProject(), MemberOf(OwnMetadataOf(timeline), "end"), options);
    SetNames(*project, plan.HasProject(), TextMemberOf(timeline, "name"));

    OtioKept kept = objects.Kept();
    const kytl::KyID &id = project->Sequence()->ID();
    kept.Keep(id, kKeptItem, ForeignPartOf(timeline, {"name", "tracks"}));
    kept.Keep(id, kKeptStack, ForeignPartOf(plan.Stack(), {"name", "children", "source_range", "enabled"}));
    kept.Store(*project);
    if (plan.RoundedCount() > 0)
        Tell(options, LoadEntry::Severity::Warning,
             std::to_string(plan.RoundedCount()) +
                 " times lie between two frames of the sequence and are the nearest one");
    if (options.plugins) {
        project->SetPluginManager(options.plugins);
        options.plugins->AttachProject(project);
    }
    return project;
}

} // namespace marlet::project
