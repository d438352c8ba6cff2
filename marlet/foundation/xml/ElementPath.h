#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <vector>

namespace marlet::project
{

/// The tags from the root down to an element, with slashes between them. Behind a tag stands the name of the
/// object in quotes, or, if it has none, its place among elements of the same tag: Key[3].
NarrowString ElementPath(const XmlCursor &element);

/// The ID of the object that an element is of, or none.
std::vector<kytl::KyID> NearestID(const XmlCursor &element);

} // namespace marlet::project
