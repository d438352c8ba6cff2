#include "Glow.h"
#include "PluginDirectory.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace marlet::project;
using Position = kytl::matl::KyPoint<3, float>;

struct NoEffects : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override { return {}; }
};

// A red square that crosses the frame of a composition in four seconds, with a glow that grows.
std::shared_ptr<Project> MakeProject(const std::shared_ptr<AbstractPluginManager> &plugins)
{
    const auto project = Project::Create(plugins);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100);
    const auto solid = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 200, 200, PAR::Square);
    project->Assets().All().Add(composition);
    project->Assets().All().Add(solid);

    const auto layer = AssetLayer::Create(solid);
    layer->SetName(u"Square");
    layer->SetParentComposition(composition);
    layer->SetEndFrame(composition->Settings().FrameCount());
    composition->Layers().Add(layer);
    solid->Instances().Add(layer);

    KeyFrameList &position = layer->Animation().KeyFrames("position");
    position.Add(KeyFrame(0, Position{-400, 0, 0}));
    position.Add(KeyFrame(4000, Position{400, 100, 0}));

    const auto glow = EffectInstance::Create(plugins->FindPlugin(embed::Glow::kID));
    glow->Animation().KeyFrames("radius").Add(KeyFrame(0, 0.f));
    glow->Animation().KeyFrames("radius").Add(KeyFrame(4000, 80.f));
    glow->SetParent(layer->ID(), composition->ID());
    layer->Effects().Add(glow);
    return project;
}

// Where each layer stands in some frames, and how large its picture is then.
void Show(const std::shared_ptr<Project> &project)
{
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition)) {
        const auto composition = std::static_pointer_cast<CompositionAsset>(asset);
        for (const auto &layer : composition->Layers()) {
            std::cout << ToUtf8(composition->Name()) << ", " << ToUtf8(layer->Name()) << "\n";
            for (int frame = 0; frame <= composition->Settings().FrameCount(); frame += 50) {
                const int time = layer->GlobalFrameToRelativeTime(frame, composition);
                const auto world = layer->WorldTransformationAtTime(time, project, false);
                std::cout << "  frame " << frame << ": " << world[3] << ", " << world[7];
                if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer)) {
                    kytl::matl::KyPoint<2, float> offset;
                    int width = 0;
                    int height = 0;
                    AssetLayer::ComputePostFilterDims(shown->Asset(project->Assets()), shown->Effects(), time,
                                                      0, false, offset, width, height);
                    std::cout << "; " << width << " x " << height;
                }
                std::cout << "\n";
            }
        }
    }
}

// Files do not bring back who uses an asset.
std::shared_ptr<Project> ReadProject(const std::string &text,
                                     const std::shared_ptr<AbstractPluginManager> &plugins)
{
    const auto project = Project::CreateFromXml(FromUtf8(text), u"", plugins, NoEffects());
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition))
        for (const auto &layer : static_cast<CompositionAsset &>(*asset).Layers())
            if (const auto user = std::dynamic_pointer_cast<AbstractAssetInstance>(layer))
                if (const auto used = project->Assets().GetByID(user->AssetID()))
                    used->Instances().Add(user);
    return project;
}

std::string ReadFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// embed FILE: opens the project, or makes one; shows it, saves it, loads it again and compares.
int main(int count, char **arguments)
try {
    const std::string path = count > 1 ? arguments[1] : "embedded.xml";
    const auto plugins = std::make_shared<embed::PluginDirectory>();
    plugins->Add(std::make_shared<embed::Glow>());

    const std::string text = ReadFile(path);
    const auto project = text.empty() ? MakeProject(plugins) : ReadProject(text, plugins);
    Show(project);

    std::ofstream(path, std::ios::binary) << ToUtf8(project->Serialize());
    if (ReadProject(ReadFile(path), plugins)->Serialize() != project->Serialize())
        throw std::runtime_error("the project that was read is not the one that was written");
    std::cout << "saved and read again: the same\n";
} catch (const std::exception &error) {
    std::cerr << error.what() << "\n";
    return 1;
}
