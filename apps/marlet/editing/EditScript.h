#pragma once

#include <string>
#include <vector>

namespace marlet::tool
{

/// A line of a script, taken apart.
struct ScriptLine {
    std::size_t number = 0; ///< from 1
    std::vector<std::string> words;
};

/// "film.edits:12"
std::string ScriptPlace(const std::string &path, std::size_t number);

/// The lines with something on them, of a file or, by the path "-", of standard input. Words are parted by
/// blanks; "..." and '...' hold blanks together, and a backslash in the former takes the next character as it
/// is. What follows a "#" at the start of a word is for people. @throws Failure for a quotation mark without
/// its other one
std::vector<ScriptLine> ScriptLines(const std::string &path);

} // namespace marlet::tool
