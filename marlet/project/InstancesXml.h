#pragma once

#include <marlet/project/AbstractAsset.h>

namespace marlet::project
{

/// Writes the element "Instances" of an asset, without the instances that have gone. It is for other programs
/// that look into the file: nothing here reads it.
void WriteInstances(XmlWriter &writer, const AbstractAsset::InstanceList &instances);

} // namespace marlet::project
