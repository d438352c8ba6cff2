// Any bytes are either well-formed, and then the parser behind the check takes them whole, or have a fault at
// a place in them. What stands before a fault is right as far as it goes.

#include "support/FuzzInput.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/foundation/xml/XmlReader.h>

#include <pugixml.hpp>

#include <algorithm>

using namespace marlet::project;

namespace
{

void RequirePlaces(std::string_view text, const XmlFault &fault)
{
    if (fault.offset > text.size() || fault.otherOffset > fault.offset)
        Fail("a fault lies outside of its text");
    if (!std::ranges::is_sorted(fault.openElements))
        Fail("open elements are out of order");
    for (const std::size_t element : fault.openElements)
        if (element >= fault.offset || text[element] != '<')
            Fail("an open element has no start tag");
}

/// A text that is cut is whole, or its fault is that it is cut.
void RequireNoFaultBefore(std::string_view text, std::size_t end)
{
    const auto fault = FindXmlFault(text.substr(0, end));
    if (fault && fault->offset != end)
        Fail("a text that is cut has another fault than the whole one");
}

void RequireParsed(std::string_view text)
{
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8) ||
        !document.document_element())
        Fail("the parser refuses a text that is well-formed");
}

void RequireOneMind(std::string_view text, const XmlScan &scan)
{
    const bool isWhole = !scan.fault && !scan.hasDocumentType;
    try {
        if (XmlDocument(FromUtf8(text)).Root().IsNull() == isWhole)
            Fail("the reader and the check are of two minds");
    } catch (const XmlParseException &) {
        if (!isWhole || !scan.tooDeep)
            Fail("a text is refused that is not nested too deep");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(bytes), size);
    const XmlScan scan = ScanXml(text);
    if (scan.fault) {
        RequirePlaces(text, *scan.fault);
        RequireNoFaultBefore(text, scan.fault->offset);
    } else if (!scan.hasDocumentType) {
        RequireParsed(text);
        const std::size_t tag = text.find('<', size / 2);
        RequireNoFaultBefore(text, std::min(tag, size));
    }
    if (ToUtf8(FromUtf8(text)) == text)
        RequireOneMind(text, scan);
    return 0;
}
