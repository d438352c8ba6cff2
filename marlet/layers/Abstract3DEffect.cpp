#include <marlet/layers/Abstract3DEffect.h>

namespace marlet::project
{

Abstract3DEffect::~Abstract3DEffect() = default;

std::vector<ObjectPropertyList> Abstract3DEffect::LayerReferencePropertyNames() const
{
    return {};
}

void Abstract3DEffect::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &)
{
}

void Abstract3DEffect::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &)
{
}

bool Abstract3DEffect::IsLayerReferenced(const std::shared_ptr<CompositionAsset> &, const kytl::KyID &) const
{
    return false;
}

bool Abstract3DEffect::IsTextureListReferenced(const kytl::KyID &) const
{
    return false;
}

} // namespace marlet::project
