// Any text either loads or is refused in the documented ways. What loads is saved, loaded and saved again
// without a byte changing (unless transitions of the timeline name other objects than hold them), answers for
// its matrices, values and references, and is cloned into compositions of their own. It can be checked, and
// is saved and loaded also after a repair. A load with a report gives the same, and what a load keeps, the
// next one keeps. Media assets open what their paths name, for reading alone. Each instance of a plug-in ends
// once.

#include "support/Fuzz3DEffect.h"
#include "support/FuzzInput.h"
#include "support/FuzzPlugins.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/Validate.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectTextureImageCache.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>
#include <set>

using namespace marlet::project;

namespace
{

using Plugins = std::shared_ptr<FuzzPluginManager>;
using Composition = std::shared_ptr<CompositionAsset>;

/// Questions that grow with the square of the layers are put to so many of them.
constexpr std::size_t kMostLayers = 12;

std::shared_ptr<Project> Load(const WideString &text, const Plugins &plugins)
{
    return Project::CreateFromXml(text, u"", plugins, Fuzz3DEffectFactory());
}

std::shared_ptr<Project> LoadIfAccepted(const WideString &text, const Plugins &plugins,
                                        const LoadOptions &options = {})
{
    try {
        return Project::CreateFromXml(text, u"", plugins, Fuzz3DEffectFactory(), options);
    } catch (const MessageException &) {
    } catch (const InvalidProjectVersionException &) {
    } catch (const ProjectException &) {
    } catch (const std::runtime_error &) {
    } catch (const boost::bad_lexical_cast &) {
    }
    return nullptr;
}

void AskLayer(const AbstractLayer &layer, const std::shared_ptr<Project> &project)
{
    const PropertyManager &properties = layer.Animation();
    for (int time : kFarTimes) {
        MayRefuse([&] { layer.WorldTransformationAtTime(time, project, time % 2 == 0); });
        for (const NarrowString &name : properties.PropertyNames())
            MayRefuse([&] { properties.ValueAtTime(name.c_str(), time); });
    }
}

/// Of the layers that have an ID, which a reference to none does not name.
std::vector<std::shared_ptr<AbstractLayer>> SomeLayers(const CompositionAsset &composition)
{
    std::vector<std::shared_ptr<AbstractLayer>> layers;
    for (const auto &layer : composition.Layers())
        if (!layer->ID().IsNull() && layers.size() < kMostLayers)
            layers.push_back(layer);
    return layers;
}

void RequireNoReference(const Composition &from, const CompositionAsset &to, const char *when)
{
    for (const auto &target : SomeLayers(to))
        for (const auto &layer : SomeLayers(*from))
            if (layer->IsLayerReferenced(from, target->ID()))
                Fail(when);
}

void AskReferences(const Composition &composition)
{
    const auto layers = SomeLayers(*composition);
    for (const auto &layer : layers) {
        layer->LayerReferencePropertyNames();
        for (const auto &target : layers)
            MayRefuse([&] { layer->IsLayerReferenced(composition, target->ID()); });
    }
}

void ChangeReferences(CompositionAsset &composition)
{
    const auto layers = SomeLayers(composition);
    std::unordered_map<NarrowString, NarrowString> changes;
    for (std::size_t i = 0; i < layers.size(); ++i)
        changes.try_emplace(layers[i]->ID().ToNarrowString(),
                            layers[(i + 1) % layers.size()]->ID().ToNarrowString());
    composition.ChangeLayerReferences(changes);
}

void CloneComposition(const Composition &composition)
{
    const auto clone = std::static_pointer_cast<CompositionAsset>(composition->Clone());
    if (clone->Layers().size() != composition->Layers().size())
        Fail("a clone has fewer layers");
    MayRefuse([&] { RequireNoReference(clone, *composition, "a clone refers to a layer of its source"); });
    AskReferences(clone);
    ChangeReferences(*clone);
    const ProjectTextureImageCache textures;
    clone->Serialize(textures);
    for (const auto &layer : clone->Layers())
        layer->ClearInvalidLayerReferences({});
    RequireNoReference(clone, *clone, "a cleared reference leads to a layer");
}

void AskMedia(const std::shared_ptr<AbstractAsset> &asset)
{
    const auto media = std::static_pointer_cast<MediaAsset>(asset);
    if (media->HasVideo() != (media->VideoStream() != nullptr) ||
        media->HasAudio() != (media->AudioStream() != nullptr))
        Fail("an asset and its file have different streams");
    if (media->IsOffline() && AbstractAsset::AspectRatio(asset) != 1)
        Fail("an offline asset has a shape of its own");
    media->TrimmerInPoint();
    media->TrimmerOutPoint();
    if (const auto video = media->VideoStream())
        for (const double rate : {0.0, 1e-300, 29.97, media->Override().frameRate})
            video->GetFrame(rate, video->FrameCount(rate), kyh::media::KyImageChannels::Four, nullptr, 0,
                            nullptr, 0);
    const ProjectTextureImageCache textures;
    media->Clone()->Serialize(textures);
}

constexpr int kFarFrames[] = {-2147483647 - 1, -1, 0, 1, 20, 2147483647};

/// Whether the next load finds the transitions again: every one that is referred to is held by an object
/// before, which is the only one of its ID.
bool TransitionsAreInStep(const AbstractSequenceTrack &track, const EditorSequence &sequence)
{
    const SequenceObjectList &list = track.Objects();
    std::set<NarrowString> before;
    for (unsigned int i = 0; i < list.Count(); ++i) {
        const AbstractSequenceObject &object = *list[i];
        if (const auto transition = object.IncomingTransition();
            transition && !transition->FromObject().IsNull()) {
            const auto from = list.GetByID(transition->FromObject());
            if (!from || from->OutgoingTransition() != transition ||
                !before.contains(from->ID().ToNarrowString()))
                return false;
        }
        if (sequence.FindObjectByID(object.ID()) != list[i])
            return false;
        before.insert(object.ID().ToNarrowString());
    }
    return true;
}

bool TransitionsAreInStep(const EditorSequence &sequence)
{
    const auto isInStep = [&](const auto &track) { return TransitionsAreInStep(*track, sequence); };
    return std::ranges::all_of(sequence.VideoTracks(), isInStep) &&
           std::ranges::all_of(sequence.AudioTracks(), isInStep);
}

void RequireOrder(const SequenceObjectList &list)
{
    for (unsigned int i = 1; i < list.Count(); ++i)
        if (list[i]->StartFrame() < list[i - 1]->StartFrame())
            Fail("the objects of a track are out of order");
}

void AskTrack(const SequenceObjectList &list)
{
    RequireOrder(list);
    for (const int frame : kFarFrames) {
        std::shared_ptr<AbstractSequenceObject> previous, next;
        list.FindAdjacentObjects(frame, previous, next, list.FindOnFrame(frame));
        list.GetByStartFrame(frame);
        for (const int last : kFarFrames)
            list.FindInRange(frame, last);
    }
}

/// Takes a few objects around on their track, and leaves one out at last.
void ChangeTrack(SequenceObjectList &list)
{
    for (const int frame : kFarFrames) {
        if (list.IsEmpty())
            return;
        const auto object = list.FirstByTime();
        list.Move(object, frame, frame % 2 == 0);
        const auto last = list.LastByTime();
        last->SetEndFrame(frame);
        list.Remove(last);
        list.Insert(last, last->StartFrame() / 2);
        list.Insert(last, frame);
        AskTrack(list);
        list.Remove(last);
    }
    MayRefuse([&] { list.Remove(list.LastByTime()->ID()); });
    list.Clear();
}

void AskObject(const AbstractSequenceObject &object, const std::shared_ptr<Project> &project)
{
    object.Length();
    object.AssetInstanceEnd();
    object.Asset(project->Assets());
    MayRefuse([&] { object.Speed(); });
    if (const auto *visual = dynamic_cast<const VisualObject *>(&object))
        MayRefuse([&] { visual->WorldTransformation(project); });
    if (const auto *sound = dynamic_cast<const AudioObject *>(&object))
        MayRefuse([&] { sound->AudioFrameRate(project->Assets()); });
}

void AskSequence(const EditorSequence &sequence, const std::shared_ptr<Project> &project)
{
    for (const int frame : kFarFrames) {
        sequence.PreviousEdit(frame);
        sequence.NextEdit(frame);
    }
    const auto ask = [&](const auto &track) {
        AskTrack(track->Objects());
        track->Objects().ForEach([&](const auto &object) { AskObject(*object, project); });
    };
    std::ranges::for_each(sequence.VideoTracks(), ask);
    std::ranges::for_each(sequence.AudioTracks(), ask);
}

void ChangeSequence(EditorSequence &sequence)
{
    for (const auto &track : sequence.VideoTracks())
        ChangeTrack(track->Objects());
    for (const auto &track : sequence.AudioTracks())
        ChangeTrack(track->Objects());
}

void AskProject(const std::shared_ptr<Project> &project)
{
    for (const auto &asset : project->Assets().GetByType(AssetType::Media))
        AskMedia(asset);
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition)) {
        const auto composition = std::static_pointer_cast<CompositionAsset>(asset);
        for (const auto &layer : composition->Layers())
            AskLayer(*layer, project);
        AskReferences(composition);
        CloneComposition(composition);
    }
    if (const auto sequence = project->Sequence())
        AskSequence(*sequence, project);
}

/// Nothing is repaired before the last finding stands, and no repair stands in the way of a later one.
void CheckAndRepair(const WideString &text, const Plugins &plugins)
{
    const auto project = Load(text, plugins);
    const WideString before = project->Serialize();
    const std::size_t found = Validate(*project).size();
    const std::size_t repairable = Repair(*project, RepairMode::DryRun).size();
    RequireSame(before, project->Serialize());
    if (repairable > found || Repair(*project, RepairMode::Apply).size() != repairable)
        Fail("a dry run tells of other repairs than are made");
    Validate(*project);
    Load(project->Serialize(), plugins);
}

void RequirePlaces(const LoadReport &report, const WideString &text)
{
    const NarrowString utf8 = ToUtf8(text);
    for (const LoadEntry &entry : report.Entries()) {
        if (entry.line == 0)
            continue;
        const auto before = utf8.substr(0, static_cast<std::size_t>(entry.offset));
        const auto breaks = std::ranges::count_if(before, [](char c) { return c == '\n' || c == '\r'; });
        if (entry.offset > utf8.size() || entry.line < 1 || entry.column < 1 || entry.line > breaks + 1 ||
            entry.column > static_cast<int>(before.size()) + 1)
            Fail("an entry stands outside of the text");
    }
}

/// A report changes nothing, and what was kept is kept again.
void ReportAndKeep(const WideString &text, const Plugins &plugins, const Project *accepted)
{
    LoadReport report;
    const auto told = LoadIfAccepted(text, plugins, {.report = &report});
    RequirePlaces(report, text);
    if (!told != !accepted || !told != (report.Count(LoadEntry::Severity::Error) == 1))
        Fail("a report changes whether a text loads, or does not tell why not");
    // What a text leaves out is made anew by each load, such as IDs, but not what was saved.
    if (const auto sequence = told ? told->Sequence() : nullptr;
        told && (!sequence || TransitionsAreInStep(*sequence))) {
        const WideString saved = accepted->Serialize();
        RequireSame(saved, LoadIfAccepted(saved, plugins, {.report = &report})->Serialize());
    }
    const auto kept = LoadIfAccepted(text, plugins, {.report = &report, .keepUnknown = true});
    RequirePlaces(report, text);
    if (!kept)
        return;
    const WideString saved = kept->Serialize();
    const auto again =
        Project::CreateFromXml(saved, u"", plugins, Fuzz3DEffectFactory(), {.keepUnknown = true});
    if (const auto sequence = kept->Sequence(); !sequence || TransitionsAreInStep(*sequence))
        RequireSame(saved, again->Serialize());
}

void TryText(const WideString &text, const Plugins &plugins)
{
    const auto project = LoadIfAccepted(text, plugins);
    ReportAndKeep(text, plugins, project.get());
    if (!project)
        return;
    AskProject(project);
    CheckAndRepair(text, plugins);
    const WideString saved = project->Serialize();
    const auto again = Load(saved, plugins);
    const auto sequence = project->Sequence();
    if (!sequence || TransitionsAreInStep(*sequence))
        RequireSame(saved, again->Serialize());
    if (sequence)
        ChangeSequence(*sequence);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const auto plugins = std::make_shared<FuzzPluginManager>();
    TryText(TextOfInput(bytes, size), plugins);
    if (plugins->LivingInstances() != 0)
        Fail("an instance of a plug-in did not end, or ended twice");
    return 0;
}
