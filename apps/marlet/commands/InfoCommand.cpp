#include "document/Document.h"
#include "document/LayerContent.h"
#include "document/Timeline.h"
#include "info/Info.h"
#include "options/Arguments.h"
#include "output/Warning.h"
#include "plugins/Ribbon.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::tool
{

using namespace project;

namespace
{

std::size_t CountFolders(const BinFolder &folder)
{
    std::size_t count = 0;
    for (const auto &subFolder : folder.Folders())
        count += 1 + CountFolders(*subFolder);
    return count;
}

void CountProperties(const PropertyManager &properties, ProjectSums &sums)
{
    for (const NarrowString &name : properties.PropertyNames()) {
        const unsigned int keyFrames = properties.KeyFrames(name.c_str()).Count();
        ++sums.properties;
        sums.animatedProperties += keyFrames > 0;
        sums.keyFrames += keyFrames;
        sums.expressions += properties.HasExpression(name.c_str());
    }
}

void CountTrackers(const AbstractLayer &layer, ProjectSums &sums)
{
    for (const std::shared_ptr<const Tracker> tracker : TrackersOf(layer)) {
        ++sums.trackers;
        for (const auto &point : {tracker->PrimaryTrackingPoint(), tracker->SecondaryTrackingPoint()})
            if (point)
                CountProperties(point->Animation(), sums);
    }
}

/// Every property that the details show, be it of the layer or of what is on it.
void CountLayer(const AbstractLayer &layer, ProjectSums &sums)
{
    ++sums.layers;
    CountProperties(layer.Animation(), sums);
    CountTrackers(layer, sums);
    if (const auto *layer3D = dynamic_cast<const Effect3DLayer *>(&layer))
        if (const auto ribbon = std::dynamic_pointer_cast<const Ribbon>(layer3D->Effect()))
            CountProperties(ribbon->Properties(), sums);
    for (const auto &effect : EffectsOf(layer)) {
        ++sums.effects;
        CountProperties(std::as_const(*effect).Properties(), sums);
    }
    for (const auto &mask : MasksOf(layer)) {
        ++sums.masks;
        CountProperties(std::as_const(*mask).Animation(), sums);
        for (const auto &point : mask->Path().Points())
            CountProperties(std::as_const(*point).Animation(), sums);
    }
}

/// A shared transition stands with the object before the cut.
void CountTransition(const TransitionPointer &transition, bool counts, ProjectSums &sums)
{
    if (!transition || !counts)
        return;
    ++sums.transitions;
    CountProperties(std::as_const(*transition).Properties(), sums);
}

void CountSequence(const EditorSequence &sequence, ProjectSums &sums)
{
    sums.sequenceTracks = TracksOf(sequence).size();
    for (const std::shared_ptr<const AbstractSequenceObject> object : ObjectsOf(sequence)) {
        ++sums.sequenceObjects;
        CountProperties(object->Properties(), sums);
        for (const auto &effect : object->Effects()) {
            ++sums.effects;
            CountProperties(std::as_const(*effect).Properties(), sums);
        }
        const TransitionPointer &incoming = object->IncomingTransition();
        CountTransition(incoming, incoming && incoming->FromObject().IsNull(), sums);
        CountTransition(object->OutgoingTransition(), true, sums);
    }
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &file = arguments.Operand(0);
    Document document(file);
    const ProjectPointer project = document.Open();
    for (const UnresolvedPlugin &plugin : document.Report().UnresolvedPlugins())
        Warn(file, PluginText(plugin));
    if (arguments.Has("--json"))
        WriteInfoJson(*project, output);
    else
        WriteInfoText(*project, output);
}

} // namespace

ProjectSums CountProject(const Project &project)
{
    ProjectSums sums;
    sums.folders = CountFolders(project.Assets().Bin());
    for (const auto &asset : project.Assets().All()) {
        ++sums.assets;
        sums.offlineAssets += asset->IsOffline();
    }
    for (const CompositionPointer &composition : Compositions(project)) {
        ++sums.compositions;
        for (const LayerPointer &layer : composition->Layers())
            CountLayer(*layer, sums);
    }
    if (const SequencePointer sequence = project.Sequence())
        CountSequence(*sequence, sums);
    return sums;
}

const CommandSpec &InfoCommand()
{
    static const CommandSpec command{
        "info", "what is in a project",   "FILE [--json]", 1, 1, {{"--json", "", "one JSON object a line"}},
        Run,    "info examples/orbit.xml"};
    return command;
}

} // namespace marlet::tool
