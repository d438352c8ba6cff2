#pragma once

#include <marlet/foundation/Export.h>

#include <memory>

namespace marlet::project
{

class Abstract3DEffect;
class ProjectTextureImageCache;

/// The host's maker of 3D effects.
class MARLET_EXPORT Abstract3DEffectFactory
{
public:
    Abstract3DEffectFactory() = default;
    Abstract3DEffectFactory(const Abstract3DEffectFactory &) = default;
    Abstract3DEffectFactory &operator=(const Abstract3DEffectFactory &) = default;

    /// Turns an "Effect" element, a QDomElement, back into an effect.
    virtual std::shared_ptr<Abstract3DEffect> Create(void *effectElement,
                                                     ProjectTextureImageCache &textures) const = 0;
    virtual ~Abstract3DEffectFactory();
};

} // namespace marlet::project
