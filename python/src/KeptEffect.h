#pragma once

#include <marlet/layers/Abstract3DEffectFactory.h>

namespace marlet::python
{

/// Makes 3D effects that do nothing but hold on to the elements that they were made of: scripts have none of
/// their own, and what they do not know they keep. Layers that such an element names by their IDs follow when
/// layers are copied.
class KeptEffectFactory final : public project::Abstract3DEffectFactory
{
public:
    std::shared_ptr<project::Abstract3DEffect>
    Create(void *effectElement, project::ProjectTextureImageCache &textures) const override;
};

} // namespace marlet::python
