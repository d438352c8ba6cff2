#include <marlet/layers/LayerReader.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>

namespace marlet::project
{

std::shared_ptr<AbstractLayer> LayerReader::Read(const XmlCursor &element,
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
    using Layer = AbstractLayer;
    static constexpr struct {
        const char *tag;
        Layer *(*create)(const Source &);
    } kClasses[] = {
        {"AssetLayer", [](const Source &s) -> Layer * { return new AssetLayer(s.element, s.plugins); }},
        {"Effect3DLayer",
         [](const Source &s) -> Layer * { return new Effect3DLayer(s.element, s.effects, s.textures); }},
        {"CameraLayer", [](const Source &s) -> Layer * { return new CameraLayer(s.element); }},
        {"LightLayer", [](const Source &s) -> Layer * { return new LightLayer(s.element); }},
        {"GradeLayer", [](const Source &s) -> Layer * { return new GradeLayer(s.element, s.plugins); }},
        {"PointLayer", [](const Source &s) -> Layer * { return new PointLayer(s.element, {}); }},
        {"TextLayer", [](const Source &s) -> Layer * { return new TextLayer(s.element, s.plugins); }},
    };
    for (const auto &[tag, create] : kClasses)
        if (element.Is(tag))
            return std::shared_ptr<Layer>(create({element, pluginManager, effectFactory, textures}));
    return nullptr;
}

} // namespace marlet::project
