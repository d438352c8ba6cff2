#include <marlet/project/AbstractAssetInstance.h>

namespace marlet::project
{

AbstractAssetInstance::~AbstractAssetInstance() = default;

} // namespace marlet::project
