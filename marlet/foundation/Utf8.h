#pragma once

namespace marlet::project
{

/// What stands for anything that is no character.
constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Takes one character off a UTF-8 text that is not at its end: U+FFFD for bytes that are none, as many as
/// make the longest start of one.
char32_t TakeCharacter(const char *&from, const char *end);

} // namespace marlet::project
