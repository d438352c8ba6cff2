#pragma once

#include <string>
#include <string_view>

namespace marlet::project
{

// Text of elements and attributes, as it stands between the tags of a text in UTF-8.

/// The bytes of the character that a text begins with, or 0 if XML cannot hold it or it is no UTF-8.
std::size_t CharacterSize(std::string_view text);

/// Whether XML takes the text as it is.
bool IsCleanText(std::string_view text);

/// Whether there is something in a text that XML cannot hold in any way.
bool HasForbiddenCharacter(std::string_view text);

/// The text without what XML cannot hold, with an ampersand that begins no reference as one of itself, and
/// with sections as plain text. What looks like a comment or an instruction is left out.
std::string CleanText(std::string_view text);

} // namespace marlet::project
