#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace marlet::project
{

/// A piece of markup in a text that may be damaged.
struct Tag {
    enum class Kind {
        Start,
        Empty, ///< a start tag that is its own end
        End,
        Section, ///< a comment, a CDATA section or an instruction
        Broken,  ///< a "<" that begins none of these. If a name stands behind it, it is given
        None     ///< the end of the text
    };

    Kind kind = Kind::None;
    std::size_t at = 0; ///< of its "<"
    std::size_t behind = 0;
    std::string_view name = {};
    std::string_view attributes = {}; ///< as they stand there
    bool isEnd = false;               ///< it begins as an end tag
    bool isCut = false;               ///< the text ends in it
};

/// From where on sections of each kind have no end, as far as that is known: a search for one goes to the end
/// of the text. Of one text.
struct SectionEnds {
    static constexpr std::size_t kKinds = 3;

    std::array<std::size_t, kKinds> noneFrom = {std::string_view::npos, std::string_view::npos,
                                                std::string_view::npos};
};

/// The first one from a place on.
Tag NextTag(std::string_view text, std::size_t from, SectionEnds &ends);

/// Whether XML takes the attributes of a tag as they are.
bool AreCleanAttributes(std::string_view attributes);
struct CleanedAttributes {
    std::string text;              ///< those that can be told, each with a blank in front
    std::vector<std::string> gone; ///< pieces that are none, and names that stand there already
    std::vector<std::string> cut;  ///< names of those whose value has no end
};

CleanedAttributes CleanAttributes(std::string_view attributes);

bool IsBlank(std::string_view text);
std::string_view Trimmed(std::string_view text);

} // namespace marlet::project
