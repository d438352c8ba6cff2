#include <marlet/foundation/xml/KeptXml.h>

#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlText.h>

#include <pugixml.hpp>

#include <algorithm>
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

/// As it is written.
NarrowString WhichOf(const XmlCursor &child, unsigned int number)
{
    const pugi::xml_node node(child.Node());
    if (const pugi::xml_attribute id = node.attribute("ID")) {
        const kytl::KyID parsed = ParsedID(id.value());
        return parsed.IsNull() ? NarrowString(id.value()) : parsed.ToNarrowString();
    }
    const pugi::xml_attribute time = node.attribute("Time");
    return time ? NarrowString(FormatInt(ParseInt(time.value())).View()) : std::to_string(number);
}

KeptPlace Collect(LoadContext &context, const XmlCursor &element)
{
    KeptPlace place;
    for (const pugi::xml_attribute attribute : pugi::xml_node(element.Node()).attributes())
        if (!context.IsAttributeKnown(attribute.name()))
            place.attributes.emplace_back(context.SourceOfAttribute(attribute.name()));
    unsigned int known = 0;
    std::map<std::string_view, unsigned int> ofTag;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        if (!context.IsKnown(child)) {
            place.elements.push_back({known, NarrowString(context.SourceOf(child))});
            context.TakeIDs(child);
            continue;
        }
        ++known;
        const unsigned int number = ofTag[child.Name()]++;
        if (context.IsTaken(child))
            continue;
        if (KeptPlace below = Collect(context, child); !below.IsEmpty())
            place.children.emplace(std::pair(NarrowString(child.Name()), WhichOf(child, number)),
                                   std::move(below));
    }
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
