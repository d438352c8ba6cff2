#include <marlet/foundation/xml/KeptXml.h>

#include <marlet/foundation/xml/LoadContext.h>

#include <pugixml.hpp>

namespace marlet::project
{

namespace
{

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
            place.elements.emplace_back(known, context.SourceOf(child));
            continue;
        }
        ++known;
        const unsigned int number = ofTag[child.Name()]++;
        if (context.IsTaken(child))
            continue;
        if (KeptPlace below = Collect(context, child); !below.IsEmpty())
            place.children.emplace(std::pair(NarrowString(child.Name()), number), std::move(below));
    }
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
