#include <marlet/foundation/xml/KeptXml.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlText.h>

#include <pugixml.hpp>

#include <algorithm>
#include <optional>
#include <string_view>

namespace marlet::project
{

namespace
{

kytl::KyID ParsedID(std::string_view text)
{
    try {
        return text.empty() ? kytl::KyID() : kytl::KyID::FromString(text);
    } catch (const std::exception &) { // then it is none
        return {};
    }
}

/// The ID of the object that a child is, or null. The entries of a folder are IDs themselves.
kytl::KyID IDOf(const XmlCursor &element, const XmlCursor &child)
{
    const pugi::xml_node node(child.Node());
    std::string_view text = node.attribute("ID").value();
    if (text.empty() && element.Name() == "Assets" && child.Name() == "ID")
        text = node.child_value();
    if (text.empty())
        text = node.child("ID").child_value();
    for (const pugi::xml_node below : node.children())
        if (text.empty() && std::string_view(below.name()).ends_with("Base"))
            text = below.child("ID").child_value();
    return ParsedID(text);
}

/// The attribute ID or Time as it is written, or nothing.
std::optional<NarrowString> ValueOf(const XmlCursor &child)
{
    const pugi::xml_node node(child.Node());
    if (const pugi::xml_attribute id = node.attribute("ID")) {
        const kytl::KyID parsed = ParsedID(id.value());
        return parsed.IsNull() ? NarrowString(id.value()) : parsed.ToNarrowString();
    }
    if (const pugi::xml_attribute time = node.attribute("Time"))
        return NarrowString(FormatInt(ParseInt(time.value())).View());
    return std::nullopt;
}

using Having = std::vector<std::pair<XmlCursor, KeptPlace>>;

/// The children that have something, which are in their order, by what tells them apart. Of those with one
/// value the first one may have nothing, so all of them bear a number.
void AddChildren(LoadContext &context, const XmlCursor &element, Having having, KeptPlace &place)
{
    std::map<NarrowString, unsigned int> counts; // of the tags, and of the tags with a value
    auto next = having.begin();
    for (XmlCursor child = element.FirstChild(); next != having.end(); child = child.Next()) {
        if (!context.IsKnown(child))
            continue;
        const NarrowString tag(child.Name());
        NarrowString which = std::to_string(counts[tag]++);
        if (const std::optional<NarrowString> value = ValueOf(child)) {
            which = tag + ' ' + *value + ' ';
            which += std::to_string(counts[which]++);
        }
        if (child.Node() == next->first.Node())
            place.children.emplace(std::pair(tag, which), std::move(next++->second));
    }
}

KeptPlace Collect(LoadContext &context, const XmlCursor &element)
{
    KeptPlace place;
    for (const pugi::xml_attribute attribute : pugi::xml_node(element.Node()).attributes())
        if (!context.IsAttributeKnown(attribute.name()))
            place.attributes.emplace_back(context.SourceOfAttribute(attribute.name()));
    unsigned int known = 0;
    Having having;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        if (!context.IsKnown(child)) {
            place.elements.push_back({known, NarrowString(context.SourceOf(child))});
            context.TakeIDs(child);
            continue;
        }
        ++known;
        if (context.IsTaken(child))
            continue;
        if (KeptPlace below = Collect(context, child); !below.IsEmpty())
            having.emplace_back(child, std::move(below));
    }
    AddChildren(context, element, std::move(having), place);
    if (place.elements.empty())
        return place;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
        if (context.IsKnown(child))
            place.written.push_back(IDOf(element, child));
    if (std::ranges::none_of(place.elements,
                             [&place](const KeptPlace::Element &kept) { return place.IsBehindObject(kept); }))
        place.written.clear();
    return place;
}

} // namespace

KeptXml::KeptXml(const XmlCursor &element)
{
    LoadContext *const context = LoadContext::Current();
    if (!context || !context->KeepsUnknown() || element.IsNull())
        return;
    if (KeptPlace place = Collect(*context, element); !place.IsEmpty())
        root_ = std::make_shared<const KeptPlace>(std::move(place));
    context->MarkTaken(element);
}

} // namespace marlet::project
