#pragma once

#include <cstddef>
#include <string_view>

namespace marlet::project
{

// Pieces and places of a text that is well-formed.

/// The element whose "<" stands at an offset, with its end tag.
std::string_view XmlElementAt(std::string_view text, std::size_t start);
/// The name that starts at an offset.
std::string_view XmlNameAt(std::string_view text, std::size_t start);
/// The attribute whose name stands at an offset, with its value in quotes.
std::string_view XmlAttributeAt(std::string_view text, std::size_t name);

/// A place in a text in UTF-8. Lines end with LF, CR or both, columns count characters.
struct TextPlace {
    std::size_t offset = 0;
    int line = 1;
    int column = 1;

    /// Goes on to an offset, which is no smaller.
    void GoTo(std::string_view text, std::size_t to);
};

} // namespace marlet::project
