#pragma once

#include <memory>

namespace marlet::project
{
class AbstractAsset;
class AbstractAssetInstance;
class Project;
} // namespace marlet::project

namespace guide
{

using namespace marlet::project;

void FillInstances(const Project &project);
void Forget(AbstractAsset &asset, const AbstractAssetInstance &instance);

} // namespace guide
