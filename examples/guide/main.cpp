// Puts what the guide for hosts shows to use, and stops at the first thing that is not as the guide says.

#include "Checking.h"
#include "Comparing.h"
#include "Editing.h"
#include "Exchanging.h"
#include "ExpressionEngine.h"
#include "Fade.h"
#include "Files.h"
#include "Instances.h"
#include "Media.h"
#include "SharedMedia.h"
#include "Sphere.h"
#include "Timeline.h"
#include "TrackingJob.h"

#include "../embed/Glow.h"
#include "../embed/PluginDirectory.h"

#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/TrackingPoint.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

namespace guide
{

namespace
{

void Expect(bool holds, const char *claim)
{
    if (!holds)
        throw std::runtime_error(std::string("it does not hold that ") + claim);
}

std::shared_ptr<embed::PluginDirectory> AllPlugins()
{
    const auto plugins = std::make_shared<embed::PluginDirectory>();
    plugins->Add(std::make_shared<embed::Glow>());
    plugins->Add(std::make_shared<Fade>());
    return plugins;
}

// A cut of two solids with a fade between them, and a ball that turns towards a point.
std::shared_ptr<Project> MakeProject(const std::shared_ptr<embed::PluginDirectory> &plugins)
{
    const auto project = Project::Create(plugins);
    const auto solid = SolidAsset::Create(u"Sky", {0, 0, 1, 1}, 1280, 720, PAR::Square);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100);
    project->Assets().All().Add(solid);
    project->Assets().All().Add(composition);

    const auto point = PointLayer::Create(u"Point");
    const auto sphere = std::make_shared<Sphere>();
    sphere->Animation().StaticValue("target") = point->ID();
    const auto ball = Effect3DLayer::Create(sphere, u"Ball");
    for (const std::shared_ptr<AbstractLayer> &layer :
         {std::shared_ptr<AbstractLayer>(point), std::shared_ptr<AbstractLayer>(ball)}) {
        layer->SetParentComposition(composition);
        layer->SetEndFrame(100);
        composition->Layers().Add(layer);
    }

    project->SetSequence(EditorSequence::Create(AudioVideoSettings::Preset::Hd720At25, 100));
    VideoTrack &track = *project->Sequence()->VideoTracks().front();
    const auto first = Place(project->Sequence(), track, solid, 0, 50);
    const auto second = Place(project->Sequence(), track, solid, 50, 50);
    Join(*first, *second, plugins->FindPlugin(Fade::kID), 20);
    Fade::Note(*first->OutgoingTransition()) = "slower";
    return project;
}

void CheckFiles(const std::string &folder)
{
    const auto plugins = AllPlugins();
    const auto project = MakeProject(plugins);
    const std::string path = folder + "/project.xml";
    Save(*project, path);
    const auto loaded = Open(path, plugins);
    Expect(loaded->Serialize() == project->Serialize(), "a project is read as it was written");
    const auto first = loaded->Sequence()->VideoTracks().front()->Objects()[0];
    Expect(Fade::Note(*first->OutgoingTransition()) == "slower", "private data travel in the file");
    Expect(first->Asset(loaded->Assets())->Instances().Count() == 2, "a load fills the lists of instances");

    std::string why;
    Expect(!TryOpen(path, std::make_shared<embed::PluginDirectory>(), why) &&
               why.find("Fade") != std::string::npos,
           "a missing plug-in ends the load and is named");
    Expect(TryOpen(path, nullptr, why) != nullptr, "without a manager transitions are passed over");
    std::vector<std::string> told;
    const auto kept = OpenAnyway(path, std::make_shared<embed::PluginDirectory>(), told);
    Expect(told.size() == 1 && kept->Serialize() == project->Serialize(),
           "what a missing plug-in made is kept");

    Save(*project, path);
    Expect(std::filesystem::exists(path + ".~1~"), "the earlier file stays");
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 200);
    Expect(!TryOpen(path, plugins, why), "half a file is none");
    LoadReport report;
    Expect(Rescue(path, plugins, report)->Assets().All().Count() == project->Assets().All().Count() &&
               report.FirstLoss() != nullptr,
           "what stood whole in it can be had");
}

void CheckTimeline()
{
    const auto project = MakeProject(AllPlugins());
    VideoTrack &track = *project->Sequence()->VideoTracks().front();
    const auto first = std::static_pointer_cast<VisualObject>(track.Objects()[0]);
    const auto second = track.Objects()[1];
    Expect(first->OutgoingTransition() == second->IncomingTransition(), "both sides share a transition");
    TakeAway(*project, track, first);
    Expect(!second->IncomingTransition() && !project->Sequence()->FindObjectByID(first->ID()),
           "nothing names an object that was taken away");
    Expect(project->Assets().All().front()->Instances().Count() == 1, "its asset has forgotten it");
}

// Each copy has a note of its own, whichever kind of instance it is.
template <class Instance> void CheckCopy(const std::shared_ptr<AbstractPlugin> &plugin)
{
    const auto source = Instance::Create(plugin);
    Fade::Note(*source) = "slower";
    const auto copy = Instance::Copy(source);
    Expect(Fade::Note(*copy) == "slower", "private data come along to a copy");
    Fade::Note(*copy) = "faster";
    Expect(Fade::Note(*source) == "slower", "a copy does not share the private data of its source");
    Expect(Fade::Note(*Instance::Copy(Instance::Create(plugin))).empty(),
           "no data come along where there are none");
}

void CheckCopies()
{
    const auto plugin = std::make_shared<Fade>();
    CheckCopy<Transition>(plugin);
    CheckCopy<EffectInstance>(plugin);
}

void CheckSphere()
{
    const auto project = MakeProject(AllPlugins());
    const auto composition =
        std::static_pointer_cast<CompositionAsset>(project->Assets().GetByType(AssetType::Composition)[0]);
    const auto point = composition->Layers().front();
    Expect(composition->Layers().back()->IsLayerReferenced(composition, point->ID()),
           "the ball has a target");
    const auto clone = std::static_pointer_cast<CompositionAsset>(composition->Clone());
    Expect(clone->Layers().back()->IsLayerReferenced(clone, clone->Layers().front()->ID()),
           "the copy of the ball turns towards the copy of the point");
}

void CheckExpression()
{
    const auto properties = PropertyManager::Create();
    properties->CreateProperty("size", 20.f, PropertyManager::Type::Animatable, nullptr);
    properties->Expression("size") = "1.5";
    Expect(ExpressionEngine().ShownValue(*properties, "size", 0) == 30.f, "the host evaluates expressions");
}

// A white square in a black frame, two pixels further to the right in each picture.
void WriteClip(const std::string &folder, int frameCount)
{
    constexpr int kWidth = 160;
    constexpr int kHeight = 120;
    for (int frame = 0; frame < frameCount; ++frame) {
        std::ofstream file(folder + "/clip" + std::to_string(frame) + ".ppm", std::ios::binary);
        file << "P6\n" << kWidth << " " << kHeight << "\n255\n";
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const bool inside = std::abs(x - 80 - 2 * frame) < 8 && std::abs(y - 60) < 8;
                file << std::string(3, inside ? '\xff' : '\0');
            }
    }
}

void CheckMedia(const std::string &folder)
{
    WriteClip(folder, 5);
    const WideString path = FromUtf8(folder + "/clip0.ppm");
    const Picture picture = FirstPicture(path);
    const std::size_t middle = 4u * (60 * 160 + 80);
    Expect(picture.width == 160 && picture.pixels[middle] == 255, "a picture is read without a project");

    const auto project = Project::Create(nullptr);
    auto asset = Import(*project, path);
    Expect(PictureAt(*asset, 25, 0).pixels == picture.pixels, "an asset gives the same picture");
    project->Media().RelinkMediaFile(asset, u"/nowhere/clip.mov");
    Expect(asset->IsOffline() && PictureAt(*asset, 25, 0).pixels.empty(), "an offline asset has no picture");
}

void CheckSharedMedia(const std::string &folder)
{
    const auto media = MediaOfProgram(FromUtf8(folder + "/cache"), std::size_t{64} << 20);
    WideString text;
    {
        const auto project = Project::Create(nullptr, media);
        project->Assets().All().Add(media->CreateImageSequence(FromUtf8(folder + "/clip0.ppm"), 25));
        text = project->Serialize();
    }
    OpeningDialog dialog;
    OpenText(text, nullptr, media, dialog);
    Expect(dialog.text.empty(), "a shared manager opens nothing again");

    dialog.isCancelled = true;
    const auto alone = std::make_shared<MediaManager>();
    const auto project = OpenText(text, nullptr, alone, dialog);
    Expect(dialog.text.ends_with("clip0.ppm, 1 of 1"), "a load tells of the files that it opens");
    Expect(!project->Assets().All().front()->IsOffline(), "what was opened before a cancel stays");
}

void CheckProblems()
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 5);
    project->Assets().All().Add(composition);
    const auto layer = PointLayer::Create(u"Orphan");
    layer->SetEndFrame(5);
    layer->SetParentComposition(composition);
    layer->SetParentLayer(kytl::KyID::Generate());
    composition->Layers().Add(layer);
    Expect(Problems(*project).size() == 1, "a parent that is missing is a problem");
    const std::vector<std::string> repaired = RepairReferences(*project);
    Expect(repaired ==
               std::vector<std::string>{"layer \"Orphan\" of composition \"Main\": clears the parent layer"},
           "a repair says what it does");
    Expect(Problems(*project).empty() && !layer->HasParentLayer(), "nothing of it is left");
}

void CheckChanges()
{
    const auto project = Project::Create(nullptr);
    project->Assets().All().Add(SolidAsset::Create(u"Sky", {}, 64, 64, PAR::Square));
    project->Assets().All().Add(SolidAsset::Create(u"Sea", {}, 64, 64, PAR::Square));
    const auto theirs = Project::CreateFromXml(project->Serialize(), u"", nullptr, EffectFactory());
    const WideString base = project->Serialize();
    const auto sea = project->Assets().All()[1];
    project->Assets().All()[0]->SetName(u"Blue");
    theirs->Assets().All()[0]->SetName(u"Grey");
    theirs->Assets().All()[1]->SetName(u"Water");
    Expect(TakeChanges(project, base, theirs->Serialize()) ==
               std::vector<std::string>{"solid \"Sky\": Blue or Grey"},
           "what both changed is told");
    Expect(sea->Name() == u"Water", "what theirs alone changed is taken over in place");
}

void CheckExchanging()
{
    const auto plugins = AllPlugins();
    const auto project = MakeProject(plugins);
    std::string text;
    Expect(ToTimeline(project, u"/film/", text).empty(), "a cut of solids is all seen");
    const auto again = FromTimeline(text, u"/film/", plugins);
    FillInstances(*again);
    Expect(again->Serialize() == project->Serialize(), "a timeline brings its project back");
}

std::shared_ptr<AssetLayer> SolidLayer(Project &project, const std::shared_ptr<CompositionAsset> &composition)
{
    const auto solid = SolidAsset::Create(u"Solid", {1, 0, 0, 1}, 64, 64, PAR::Square);
    project.Assets().All().Add(solid);
    const auto layer = AssetLayer::Create(solid);
    layer->SetParentComposition(composition);
    layer->SetEndFrame(50);
    composition->Layers().Add(layer);
    return layer;
}

void CheckEditing()
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 50);
    project->Assets().All().Add(composition);
    const auto layer = SolidLayer(*project, composition);
    EditHistory history(project);
    const auto panel = std::make_shared<LayerPanel>();
    history.AddObserver(panel);
    Rename(project, layer, u"Backdrop");
    for (const float opacity : {90.f, 70.f, 50.f})
        DragOpacity(project, layer, opacity);
    history.EndGesture();
    Expect(history.UndoCount() == 2, "a drag is one step");
    Expect(panel->LayersToDraw().size() == 1 && !panel->NeedsRows() && panel->FirstStaleFrame() == 0,
           "a panel hears of what changed");
    history.Undo();
    Expect(boost::get<float>(layer->Animation().StaticValue("opacity")) == 100, "an undo goes back at once");
    history.Undo();
    Expect(history.IsSaved() && layer->Name() == u"Solid", "and to the beginning");

    layer->SetEndFrame(50);
    Expect(SplitAll(project, composition, 20).empty() && composition->Layers().size() == 2,
           "a layer falls in two");
    Expect(SplitAll(project, composition, 30) == "Frame 30 is not inside of layer \"Solid\"" &&
               composition->Layers().size() == 2,
           "all layers or none");
}

void CheckTracking(const std::string &folder)
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 5);
    const auto asset = project->Media().CreateImageSequence(FromUtf8(folder + "/clip0.ppm"), 25);
    project->Assets().All().Add(composition);
    project->Assets().All().Add(asset);
    const auto layer = AssetLayer::Create(asset);
    layer->SetParentComposition(composition);
    layer->SetEndFrame(5);
    composition->Layers().Add(layer);
    const auto tracker = Tracker::Create(u"Square", {0, 0}, {0, 0}, 24, 60);
    tracker->SetMethod(Tracker::TrackerMethod::TemplateMatching);
    layer->Trackers().Add(tracker);

    TrackingJob job(project, layer, tracker);
    Expect(job.Start(0) == TrackingJob::Worker::StartResult::Started, "a run starts");
    auto ended = job.TakeNews();
    while (!ended) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ended = job.TakeNews();
    }
    Expect(ended == TrackingJob::Worker::FinishReason::LayerEndReached, "a run reaches the layer's end");
    const auto position = tracker->PrimaryTrackingPoint()->Animation().ValueAtTime("featurePosition", 4 * 40);
    const auto point = boost::get<kytl::matl::KyPoint<2, float>>(position);
    Expect(std::abs(point.X - 8) < 1 && std::abs(point.Y) < 1, "the tracker follows the square");
}

} // namespace

} // namespace guide

// guide FOLDER: works in the folder, which is made.
int main(int count, char **arguments)
try {
    const std::string folder = count > 1 ? arguments[1] : "guide-files";
    std::filesystem::create_directories(folder);
    guide::CheckFiles(folder);
    guide::CheckTimeline();
    guide::CheckCopies();
    guide::CheckSphere();
    guide::CheckExpression();
    guide::CheckMedia(folder);
    guide::CheckSharedMedia(folder);
    guide::CheckExchanging();
    guide::CheckEditing();
    guide::CheckTracking(folder);
    guide::CheckProblems();
    guide::CheckChanges();
    std::cout << "all as the guide says\n";
} catch (const std::exception &error) {
    std::cerr << error.what() << "\n";
    return 1;
}
