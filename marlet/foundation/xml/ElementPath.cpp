#include <marlet/foundation/xml/ElementPath.h>

#include <pugixml.hpp>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// A child of an object's element, or of the element that holds what all objects of its kind have.
pugi::xml_node Field(pugi::xml_node object, const char *name)
{
    if (const pugi::xml_node own = object.child(name))
        return own;
    for (const pugi::xml_node child : object.children())
        if (std::string_view(child.name()).ends_with("Base"))
            return child.child(name);
    return {};
}

NarrowString Quoted(std::string_view name)
{
    constexpr std::size_t kLongest = 60;
    NarrowString text(name);
    std::ranges::replace_if(
        text, [](char c) { return c == '"' || static_cast<unsigned char>(c) < ' '; }, ' ');
    if (text.size() > kLongest) {
        std::size_t end = kLongest;
        while ((text[end] & 0xC0) == 0x80)
            --end;
        text.erase(end);
        text += "...";
    }
    return " \"" + text + '"';
}

} // namespace

NarrowString PathStep(std::string_view tag, std::string_view name, int place)
{
    NarrowString step(tag);
    if (!name.empty())
        step += Quoted(name);
    else if (place > 0)
        step += "[" + std::to_string(place) + "]";
    return step;
}

int ElementPaths::PlaceAmongEqual(pugi::xml_node_struct *element)
{
    const pugi::xml_node node(element);
    const char *const tag = node.name();
    pugi::xml_node before = node.previous_sibling(tag);
    if (!before && !node.next_sibling(tag))
        return 0;
    int place = 1;
    for (; before; before = before.previous_sibling(tag), ++place)
        if (const auto known = places_.find(before.internal_object()); known != places_.end()) {
            place += known->second;
            break;
        }
    return places_[element] = place;
}

NarrowString ElementPaths::StepOf(pugi::xml_node_struct *element)
{
    const pugi::xml_node node(element);
    const std::string_view tag = node.name();
    const std::string_view name = tag.ends_with("Base") ? "" : Field(node, "Name").child_value();
    return PathStep(tag, name, name.empty() ? PlaceAmongEqual(element) : 0);
}

const NarrowString &ElementPaths::PathOf(const XmlCursor &element)
{
    const auto [entry, isNew] = paths_.try_emplace(element.Node());
    if (!isNew)
        return entry->second;
    NarrowString path = StepOf(element.Node());
    const pugi::xml_node parent = pugi::xml_node(element.Node()).parent();
    if (parent.type() == pugi::node_element)
        path = PathOf(XmlCursor(parent.internal_object())) + "/" + path;
    return paths_[element.Node()] = std::move(path);
}

const std::vector<kytl::KyID> &ElementPaths::IDsOf(const XmlCursor &element)
{
    const auto [entry, isNew] = ids_.try_emplace(element.Node());
    if (!isNew)
        return entry->second;
    const pugi::xml_node node(element.Node());
    std::string_view text = Field(node, "ID").child_value();
    if (text.empty())
        text = node.attribute("ID").value();
    std::vector<kytl::KyID> ids;
    if (text.empty()) {
        if (node.parent().type() == pugi::node_element)
            ids = IDsOf(XmlCursor(node.parent().internal_object()));
    } else {
        try {
            ids = {kytl::KyID::FromString(text)};
        } catch (const std::exception &) { // then it has none
        }
    }
    return ids_[element.Node()] = std::move(ids);
}

} // namespace marlet::project
