// The loop over a property that a host writes in C++, for bench.py: prints the microseconds of one pass.
#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{

using namespace marlet::project;

struct NoEffects : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override { return {}; }
};

/// The least of many passes, as Python's timeit does it.
double MicrosecondsOf(const PropertyManager &properties, const char *name, int count, int step)
{
    std::vector<float> values(static_cast<std::size_t>(count));
    double least = 1e9;
    for (int pass = 0; pass < 200; ++pass) {
        const auto start = std::chrono::steady_clock::now();
        const PropertyManager::PropertyID id = properties.GetPropertyID(name);
        for (int i = 0; i < count; ++i)
            values[static_cast<std::size_t>(i)] = boost::get<float>(properties.ValueAtTime(id, i * step));
        const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
        least = std::min(least, took.count());
    }
    return least;
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 2)
        return 1;
    const auto project = ProjectFile::Load(arguments[1], nullptr, NoEffects());
    const auto asset = project->Assets().GetByType(AssetType::Composition).front();
    const auto layer = static_cast<CompositionAsset &>(*asset).Layers().front();
    std::printf("%.3f\n", MicrosecondsOf(layer->Animation(), "rotationZ", 1000, 10));
}
