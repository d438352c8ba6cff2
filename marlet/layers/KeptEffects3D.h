#pragma once

#include <marlet/layers/Abstract3DEffectFactory.h>

namespace marlet::project
{

/// Takes any 3D effect: what the host's own factory does not make keeps the element as it was read, and
/// writes it again. It shows nothing, and knows of no layer or texture that the element names, so that copies
/// of a layer go on to name those of the first.
class MARLET_EXPORT KeptEffects3D : public Abstract3DEffectFactory
{
public:
    /// Of a host without effects of its own.
    KeptEffects3D() = default;
    /// The host's factory must outlive this one.
    explicit KeptEffects3D(const Abstract3DEffectFactory &known) : known_(&known) {}

    std::shared_ptr<Abstract3DEffect> Create(void *effectElement,
                                             ProjectTextureImageCache &textures) const override;

private:
    const Abstract3DEffectFactory *known_ = nullptr;
};

} // namespace marlet::project
