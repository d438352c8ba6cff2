#include "Colors.h"

#include <cstdlib>
#include <optional>

#include <unistd.h>

namespace marlet::tool
{

namespace
{

std::optional<bool> chosen; ///< nothing for auto

bool HasColors(Stream stream)
{
    if (chosen)
        return *chosen;
    const auto variable = [](const char *name) {
        const char *const text = std::getenv(name);
        return std::string_view(text ? text : "");
    };
    return variable("NO_COLOR").empty() && variable("TERM") != "dumb" &&
           ::isatty(stream == Stream::Out ? STDOUT_FILENO : STDERR_FILENO) == 1;
}

const char *CodeOf(Color color)
{
    switch (color) {
    case Color::Bold:
        return "1";
    case Color::Red:
        return "1;31";
    case Color::Green:
        return "32";
    case Color::Yellow:
        return "33";
    case Color::Blue:
        return "34";
    default:
        return "35";
    }
}

} // namespace

bool UseColors(std::string_view when)
{
    if (when != "always" && when != "never" && when != "auto")
        return false;
    chosen = when == "auto" ? std::nullopt : std::optional(when == "always");
    return true;
}

std::string Colored(const std::string &text, Color color, Stream stream)
{
    return HasColors(stream) ? std::string("\x1B[") + CodeOf(color) + "m" + text + "\x1B[0m" : text;
}

} // namespace marlet::tool
