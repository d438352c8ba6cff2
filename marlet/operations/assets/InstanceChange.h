#pragma once

#include <memory>

namespace marlet::project
{

class AbstractAsset;
class AbstractAssetInstance;
class Edit;

// The list of what uses an asset may be long, so these announce to an edit the one entry that they change,
// and not the list.

/// Behind the others.
void AddInstance(Edit &edit, const std::shared_ptr<AbstractAsset> &asset,
                 const std::shared_ptr<AbstractAssetInstance> &instance);
/// Does nothing if the list does not name it.
void RemoveInstance(Edit &edit, const std::shared_ptr<AbstractAsset> &asset,
                    const std::shared_ptr<AbstractAssetInstance> &instance);

} // namespace marlet::project
