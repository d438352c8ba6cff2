#pragma once

#include <optional>

namespace marlet::project
{

class AbstractAsset;

/// How many frames an asset has at a rate, whatever its own; none if it has no end or nobody knows it.
std::optional<int> AssetLength(const AbstractAsset &asset, double frameRate);

} // namespace marlet::project
