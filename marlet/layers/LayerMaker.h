#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/layers/AbstractLayer.h>

#include <utility>

namespace marlet::project
{

/// Makes layers: new ones, copies, and those of a document. Their constructors are private, and this is the
/// friend that calls them.
class LayerMaker
{
public:
    template <class Layer, class... Arguments> static std::shared_ptr<Layer> Make(Arguments &&...arguments)
    {
        return std::shared_ptr<Layer>(new Layer(std::forward<Arguments>(arguments)...));
    }

    /// A layer of a text of its own. What its class needs to be read stands behind the text.
    template <class Layer, class... Context>
    static std::shared_ptr<Layer> FromText(const WideString &xml, Context &&...context)
    {
        const XmlDocument document(xml);
        return Make<Layer>(document.Root(), std::forward<Context>(context)...);
    }

    /// A clone but for the objects that its class owns: with a new ID and properties of its own.
    template <class Layer> static std::shared_ptr<Layer> Copy(const Layer &layer)
    {
        const std::shared_ptr<Layer> copy = Make<Layer>(layer);
        copy->SetID(kytl::KyID::Generate());
        copy->SetPropertyManager(PropertyManager::Copy(layer.Animation()));
        return copy;
    }

    /// The one table of tags and classes: the class is that of the element's tag, in which case counts; an
    /// empty pointer for any other tag.
    /// @throws as the class's own CreateFromXml
    static std::shared_ptr<AbstractLayer> Read(const XmlCursor &element,
                                               const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                               const Abstract3DEffectFactory &effectFactory,
                                               ProjectTextureImageCache &textures);
};

} // namespace marlet::project
