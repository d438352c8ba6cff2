#pragma once

#include <string>
#include <string_view>

namespace marlet::tool
{

/// Which of the two that a person may be reading.
enum class Stream { Out, Error };

enum class Color { Bold, Red, Green, Yellow, Blue, Magenta };

/// Says when there are colours: "always", "never", or "auto", which is on a terminal unless NO_COLOR is set
/// in the environment or the terminal is a dumb one. Auto is how it begins. False for any other word.
bool UseColors(std::string_view when);

/// The text in a colour, if the stream has colours.
std::string Colored(const std::string &text, Color color, Stream stream);

} // namespace marlet::tool
