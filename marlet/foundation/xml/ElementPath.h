#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <unordered_map>
#include <vector>

namespace marlet::project
{

/// Says where elements of one document stand.
class ElementPaths
{
public:
    /// The tags from the root down to an element, with slashes between them. Behind a tag stands the name of
    /// the object in quotes, or, if it has none, its place among elements of the same tag: Key[3].
    NarrowString PathOf(const XmlCursor &element);

private:
    NarrowString PlaceAmongEqual(pugi::xml_node_struct *element);

    /// Of those that were asked for, since counting begins at the last of them.
    std::unordered_map<const pugi::xml_node_struct *, int> places_;
};

/// The ID of the object that an element is of, or none.
std::vector<kytl::KyID> NearestID(const XmlCursor &element);

} // namespace marlet::project
