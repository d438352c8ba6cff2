#include <marlet/layers/LayerReader.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>

namespace marlet::project
{

std::shared_ptr<AbstractLayer> LayerReader::Read(const XmlCursor &element,
                                                 const std::shared_ptr<AbstractPluginManager> &,
                                                 const Abstract3DEffectFactory &, ProjectTextureImageCache &)
{
    static constexpr struct {
        const char *tag;
        AbstractLayer *(*create)(const XmlCursor &);
    } kClasses[] = {
        {"CameraLayer", [](const XmlCursor &e) -> AbstractLayer * { return new CameraLayer(e); }},
        {"LightLayer", [](const XmlCursor &e) -> AbstractLayer * { return new LightLayer(e); }},
        {"PointLayer", [](const XmlCursor &e) -> AbstractLayer * { return new PointLayer(e, {}); }},
    };
    for (const auto &[tag, create] : kClasses)
        if (element.Is(tag))
            return std::shared_ptr<AbstractLayer>(create(element));
    return nullptr;
}

} // namespace marlet::project
