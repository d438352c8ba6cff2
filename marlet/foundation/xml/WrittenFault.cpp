#include <marlet/foundation/xml/WrittenFault.h>

#include <marlet/foundation/TextPlace.h>
#include <marlet/foundation/xml/ElementPath.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlSource.h>

#include <algorithm>

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
    if (text.empty())
        return {};
    const XmlDocument document(FromUtf8("<a>" + NarrowString(text) + "</a>"));
    return document.Root().IsNull() ? NarrowString(text) : document.Root().Text();
}

/// The name of an open element's object up to the fault, if it stands near the start of that: to look as far
/// as the fault for each of the open elements would take the square of the text's length.
std::string_view NameNear(std::string_view text, const XmlFault &fault, std::size_t element)
{
    constexpr std::size_t kFurthest = 4096;
    const std::size_t end = std::min(fault.offset, element + kFurthest);
    const std::string_view name = XmlNameIn(text.substr(0, end), element);
    const bool isCut = end < fault.offset && name.data() + name.size() == text.data() + end;
    return isCut ? std::string_view() : name;
}

/// The tag of an open element and the name of its object.
NarrowString StepOf(std::string_view text, const XmlFault &fault, std::size_t element)
{
    const std::string_view tag = XmlNameAt(text, element + 1);
    return PathStep(tag, tag.ends_with("Base") ? "" : Unescaped(NameNear(text, fault, element)), 0);
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
        const bool isInPath = i < std::size_t(kDeepestNesting);
        const bool isInLines = i + kMostLines >= open.size();
        if (!isInPath && !isInLines)
            continue;
        const NarrowString step = StepOf(text, fault, open[i]);
        if (isInPath)
            entry.path += (i == 0 ? "" : "/") + step;
        if (isInLines)
            lines += (lines.empty() ? "" : ", ") + step + " (" + LineOf(text, open[i]) + ")";
    }
    if (!lines.empty())
        entry.what += "; open there: " + lines;
    return entry;
}

} // namespace marlet::project
