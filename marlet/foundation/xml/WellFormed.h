#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marlet::project
{

/// Where a text ceases to be well-formed, in bytes from its start.
struct XmlFault {
    /// The size of the text where it is cut: where more of it could still be right.
    std::size_t offset = 0;
    /// What is wrong, as the rest of a sentence: "an attribute stands twice in its element".
    std::string what;
    /// The other place that has to do with it: the start tag that a wrong end tag belongs to, the first of
    /// two attributes, the start of what is cut. Else the offset.
    std::size_t otherOffset = 0;
    /// The start tags of the elements that are open at the fault, from the root on.
    std::vector<std::size_t> openElements;
};

/// What one pass over a text finds out. Behind a fault nothing was looked at.
struct XmlScan {
    std::optional<XmlFault> fault;
    bool hasDocumentType = false;
    /// Whether there are comments, CDATA sections or instructions, besides the XML declaration.
    bool hasSections = false;
    /// The start tag of the first element that is nested deeper than is allowed.
    std::optional<std::size_t> tooDeep;
};

/// Whether a text is a well-formed document by XML 1.0, fifth edition, as a processor sees it that validates
/// nothing and reads no other file. Any version 1.x and any encoding may be declared; a byte order mark may
/// come first.
///
/// Of a document type the structure is checked, and which entities it declares; neither the models of
/// elements nor what entities stand for.
XmlScan ScanXml(std::string_view utf8);

/// The first thing in a text that is not well-formed.
std::optional<XmlFault> FindXmlFault(std::string_view utf8);

} // namespace marlet::project
