// What of a text was looked for, as bits for places in the buffer that was parsed.

#include <marlet/foundation/xml/LoadContext.h>

#include <pugixml.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace marlet::project
{

namespace
{

// Each element has three places in the buffer of its own, since its name is followed by a blank, a slash or a
// bracket and preceded by a bracket.
constexpr std::size_t kKnown = 0;
constexpr std::size_t kTaken = static_cast<std::size_t>(-1);

} // namespace

std::size_t LoadContext::OffsetOf(const char *inBuffer) const
{
    const auto offset = static_cast<std::size_t>(inBuffer - buffer_);
    return buffer_ && inBuffer >= buffer_ && offset < size_ ? offset : kNowhere;
}

std::size_t LoadContext::OffsetOf(const XmlCursor &element) const
{
    return element.IsNull() ? kNowhere : OffsetOf(pugi::xml_node(element.Node()).name());
}

std::size_t LoadContext::TagOf(const XmlCursor &element) const
{
    const std::size_t name = OffsetOf(element);
    return name == kNowhere ? kNowhere : name - 1;
}

bool LoadContext::Has(std::size_t bit) const
{
    return bit < size_ && marks_[bit];
}

void LoadContext::Set(std::size_t bit, bool value)
{
    if (bit < size_)
        marks_[bit] = value;
}

void LoadContext::MarkKnown(const XmlCursor &element)
{
    const std::size_t offset = OffsetOf(element);
    if (offset == kNowhere)
        return;
    Set(offset + kKnown, true);
    last_ = element;
}

void LoadContext::MarkUnknown(const XmlCursor &element)
{
    Set(OffsetOf(element), false);
}

void LoadContext::MarkAllKnown(const XmlCursor &element)
{
    MarkKnown(element);
    MarkAttributes(element);
    MarkText(element);
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next())
        MarkAllKnown(child);
    last_ = element;
}

void LoadContext::MarkWhole(const XmlCursor &element)
{
    MarkAllKnown(element);
    whole_.insert(OffsetOf(element));
}

void LoadContext::MarkAttribute(const char *name)
{
    Set(OffsetOf(name), true);
}

void LoadContext::MarkText(const XmlCursor &element)
{
    if (const std::size_t offset = OffsetOf(element); offset != kNowhere)
        Set(offset + element.Name().size(), true);
}

void LoadContext::MarkAttributes(const XmlCursor &element)
{
    for (const pugi::xml_attribute attribute : pugi::xml_node(element.Node()).attributes())
        MarkAttribute(attribute.name());
}

void LoadContext::MarkTaken(const XmlCursor &element)
{
    if (const std::size_t offset = OffsetOf(element); offset != kNowhere)
        Set(offset + kTaken, true);
}

void LoadContext::KeepReference(const XmlCursor &element)
{
    MarkUnknown(element);
    references_.insert(OffsetOf(element));
}

/// The lists of folders name objects that are elsewhere.
void LoadContext::TakeIDs(const XmlCursor &kept)
{
    const auto take = [this](std::string_view text) {
        try {
            if (!text.empty())
                keptIDs_.insert(kytl::KyID::FromString(text));
        } catch (const std::exception &) { // it is none
        }
    };
    const pugi::xml_node node(kept.Node());
    take(node.attribute("ID").value());
    for (XmlCursor child = kept.FirstChild(); !child.IsNull(); child = child.Next())
        if (child.Name() != "ID")
            TakeIDs(child);
        else if (kept.Name() != "Assets")
            take(pugi::xml_node(child.Node()).child_value());
}

bool LoadContext::IsKnown(const XmlCursor &element) const
{
    return Has(OffsetOf(element));
}

bool LoadContext::IsAttributeKnown(const char *name) const
{
    return Has(OffsetOf(name));
}

bool LoadContext::HasUnknownAttribute(const XmlCursor &element) const
{
    return std::ranges::any_of(pugi::xml_node(element.Node()).attributes(),
                               [this](pugi::xml_attribute each) { return !IsAttributeKnown(each.name()); });
}

bool LoadContext::IsTextKnown(const XmlCursor &element) const
{
    const std::size_t offset = OffsetOf(element);
    return offset != kNowhere && Has(offset + element.Name().size());
}

bool LoadContext::IsTaken(const XmlCursor &element) const
{
    const std::size_t offset = OffsetOf(element);
    return offset != kNowhere && Has(offset + kTaken);
}

void LoadContext::MarkUnknownBut(const XmlCursor &element, const XmlCursor &written)
{
    const pugi::xml_node ours(written.Node());
    for (const pugi::xml_attribute attribute : pugi::xml_node(element.Node()).attributes())
        if (!ours.attribute(attribute.name()))
            Set(OffsetOf(attribute.name()), false);
    std::map<std::string_view, pugi::xml_node> next;
    for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
        const char *const tag = pugi::xml_node(child.Node()).name();
        const auto [same, isFirst] = next.try_emplace(tag);
        same->second = isFirst ? ours.child(tag) : same->second.next_sibling(tag);
        if (same->second)
            MarkUnknownBut(child, XmlCursor(same->second.internal_object()));
        else
            MarkUnknown(child);
    }
}

} // namespace marlet::project
