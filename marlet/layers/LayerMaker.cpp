#include <marlet/layers/LayerMaker.h>

#include <marlet/foundation/Deserializer.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>

namespace marlet::project
{

std::shared_ptr<AbstractLayer> LayerMaker::Read(const XmlCursor &element,
                                                const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                                const Abstract3DEffectFactory &effectFactory,
                                                ProjectTextureImageCache &textures)
{
    struct Source {
        const XmlCursor &element;
        const std::shared_ptr<AbstractPluginManager> &plugins;
        const Abstract3DEffectFactory &effects;
        ProjectTextureImageCache &textures;
    };
    using Layer = std::shared_ptr<AbstractLayer>;
    static constexpr struct {
        const char *tag;
        Layer (*make)(const Source &);
    } kClasses[] = {
        {"AssetLayer", [](const Source &s) -> Layer { return Make<AssetLayer>(s.element, s.plugins); }},
        {"Effect3DLayer",
         [](const Source &s) -> Layer { return Make<Effect3DLayer>(s.element, s.effects, s.textures); }},
        {"CameraLayer", [](const Source &s) -> Layer { return Make<CameraLayer>(s.element); }},
        {"LightLayer", [](const Source &s) -> Layer { return Make<LightLayer>(s.element); }},
        {"GradeLayer", [](const Source &s) -> Layer { return Make<GradeLayer>(s.element, s.plugins); }},
        {"PointLayer", [](const Source &s) -> Layer { return Make<PointLayer>(s.element, Deserializer()); }},
        {"TextLayer", [](const Source &s) -> Layer { return Make<TextLayer>(s.element, s.plugins); }},
    };
    for (const auto &[tag, make] : kClasses)
        if (element.Is(tag))
            return make({element, pluginManager, effectFactory, textures});
    return nullptr;
}

} // namespace marlet::project
