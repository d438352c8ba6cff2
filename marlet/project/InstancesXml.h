#pragma once

#include <marlet/project/AbstractAsset.h>

namespace marlet::project
{

class XmlCursor;

/// Writes the element "Instances" of an asset, without the instances that have gone. It is for other programs
/// that look into the file: nothing here reads it.
void WriteInstances(XmlWriter &writer, const AbstractAsset::InstanceList &instances);

/// Takes the list in an asset's element for known. It is not read, since it repeats what stands elsewhere.
void PassInstances(const XmlCursor &asset);

} // namespace marlet::project
