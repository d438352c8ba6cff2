#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace marlet::project
{

// Pieces of a text that is well-formed.

/// Something that is neither an element nor a text.
struct XmlSection {
    std::size_t offset;
    std::size_t element;
};

/// The element whose "<" stands at an offset, with its end tag.
std::string_view XmlElementAt(std::string_view text, std::size_t start);
/// The name that starts at an offset.
std::string_view XmlNameAt(std::string_view text, std::size_t start);
/// The text of the child "Name" of the element whose "<" stands at an offset, or of a child of its whose tag
/// ends in "Base". The text may be cut off anywhere; empty if there is none up to there.
std::string_view XmlNameIn(std::string_view text, std::size_t start);
/// The comments and instructions, each with the "<" of the innermost element around it, which is
/// npos outside of the root. The XML declaration is none.
std::vector<XmlSection> XmlSections(std::string_view text);
/// The attribute whose name stands at an offset, with its value in quotes.
std::string_view XmlAttributeAt(std::string_view text, std::size_t name);

} // namespace marlet::project
