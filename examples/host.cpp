#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/KeptEffects3D.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace marlet::project;

// Prints where each layer of a project stands in the first frame of its composition.
int main(int count, char **arguments)
try {
    std::ifstream file(count > 1 ? arguments[1] : "");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto project = Project::CreateFromXml(FromUtf8(text), u"", nullptr, KeptEffects3D());
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition)) {
        const auto composition = std::static_pointer_cast<CompositionAsset>(asset);
        for (const auto &layer : composition->Layers()) {
            const int time = layer->GlobalFrameToRelativeTime(0, composition);
            const auto world = layer->WorldTransformationAtTime(time, project, false);
            std::cout << ToUtf8(layer->Name()) << ": " << world[3] << ", " << world[7] << ", " << world[11]
                      << "\n";
        }
    }
} catch (const std::exception &error) {
    std::cerr << error.what() << "\n";
    return 1;
}
