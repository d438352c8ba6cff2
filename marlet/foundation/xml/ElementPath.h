#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <string_view>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

/// One step of a path: the tag, and behind it the name of the object in quotes, or, if it has none, its place
/// among elements of the same tag: Key[3]. The place is 0 for the only one.
NarrowString PathStep(std::string_view tag, std::string_view name, int place);

/// Says where elements of one document stand.
class ElementPaths
{
public:
    /// The steps from the root down to an element, with slashes between them.
    const NarrowString &PathOf(const XmlCursor &element);
    /// The ID of the object that an element is of, or none.
    const std::vector<kytl::KyID> &IDsOf(const XmlCursor &element);

private:
    NarrowString StepOf(pugi::xml_node_struct *element);
    int PlaceAmongEqual(pugi::xml_node_struct *element);

    // Of those that were asked for, and those around them: many entries stand in one place, or near another.
    std::unordered_map<const pugi::xml_node_struct *, NarrowString> paths_;
    std::unordered_map<const pugi::xml_node_struct *, std::vector<kytl::KyID>> ids_;
    std::unordered_map<const pugi::xml_node_struct *, int> places_;
};

} // namespace marlet::project
