// Any text either loads or is refused in the documented ways. What loads is saved, loaded and saved again
// without a byte changing, and answers for its matrices and values.

#include "support/FuzzInput.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>

using namespace marlet::project;

namespace
{

struct NoEffects : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override { return {}; }
};

std::shared_ptr<Project> Load(const WideString &text)
{
    return Project::CreateFromXml(text, u"", nullptr, NoEffects());
}

std::shared_ptr<Project> LoadIfAccepted(const WideString &text)
{
    try {
        return Load(text);
    } catch (const XmlParseException &) {
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

void AskAllLayers(const std::shared_ptr<Project> &project)
{
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition))
        for (const auto &layer : std::static_pointer_cast<CompositionAsset>(asset)->Layers())
            AskLayer(*layer, project);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const auto project = LoadIfAccepted(TextOfInput(bytes, size));
    if (!project)
        return 0;
    AskAllLayers(project);
    const WideString saved = project->Serialize();
    RequireSame(saved, Load(saved)->Serialize());
    return 0;
}
