#include <marlet/layers/Abstract3DEffectFactory.h>

namespace marlet::project
{

Abstract3DEffectFactory::~Abstract3DEffectFactory() = default;

} // namespace marlet::project
