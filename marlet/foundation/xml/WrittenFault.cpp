#include <marlet/foundation/xml/WrittenFault.h>

#include <marlet/foundation/TextPlace.h>
#include <marlet/foundation/xml/ElementPath.h>
#include <marlet/foundation/xml/XmlSource.h>

namespace marlet::project
{

namespace
{

TextPlace PlaceAt(std::string_view text, std::size_t offset)
{
    TextPlace place;
    place.GoTo(text, offset);
    return place;
}

NarrowString LineOf(std::string_view text, std::size_t offset)
{
    return "line " + std::to_string(PlaceAt(text, offset).line);
}

NarrowString Unescaped(std::string_view text)
{
    const XmlDocument document(FromUtf8("<a>" + NarrowString(text) + "</a>"));
    return document.Root().IsNull() ? NarrowString(text) : document.Root().Text();
}

/// The tag of an open element and the name of its object, up to the fault.
NarrowString StepOf(std::string_view text, const XmlFault &fault, std::size_t element)
{
    const std::string_view tag = XmlNameAt(text, element + 1);
    return PathStep(
        tag, tag.ends_with("Base") ? "" : Unescaped(XmlNameIn(text.substr(0, fault.offset), element)), 0);
}

} // namespace

LoadEntry WrittenFault(const XmlFault &fault, std::string_view text)
{
    constexpr std::size_t kMostLines = 10;
    LoadEntry entry{LoadEntry::Severity::Error, "the text is no XML: " + fault.what, {}, 1, 0, fault.offset};
    if (fault.otherOffset != fault.offset)
        entry.what += "; see " + LineOf(text, fault.otherOffset) + ", column " +
                      std::to_string(PlaceAt(text, fault.otherOffset).column);
    const std::vector<std::size_t> &open = fault.openElements;
    NarrowString lines;
    for (std::size_t i = 0; i < open.size(); ++i) {
        const NarrowString step = StepOf(text, fault, open[i]);
        entry.path += (i == 0 ? "" : "/") + step;
        if (i + kMostLines >= open.size())
            lines += (lines.empty() ? "" : ", ") + step + " (" + LineOf(text, open[i]) + ")";
    }
    if (!lines.empty())
        entry.what += "; open there: " + lines;
    return entry;
}

} // namespace marlet::project
