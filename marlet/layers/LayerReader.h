#pragma once

#include <memory>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractLayer;
class AbstractPluginManager;
class ProjectTextureImageCache;
class XmlCursor;

/// Makes layers from elements of a document: the one table of tags and classes.
class LayerReader
{
public:
    /// The class is that of the element's tag, in which case counts; an empty pointer for any other tag.
    /// @throws as the class's own CreateFromXml
    static std::shared_ptr<AbstractLayer> Read(const XmlCursor &element,
                                               const std::shared_ptr<AbstractPluginManager> &pluginManager,
                                               const Abstract3DEffectFactory &effectFactory,
                                               ProjectTextureImageCache &textures);
};

} // namespace marlet::project
