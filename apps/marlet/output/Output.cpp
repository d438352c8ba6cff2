#include "Output.h"

#include "Failure.h"

#include <marlet/foundation/Strings.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <system_error>

namespace marlet::tool
{

namespace
{

std::size_t CharacterCount(std::string_view utf8)
{
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Blanks(const std::string &text, std::size_t width)
{
    const std::size_t count = CharacterCount(text);
    return std::string(count < width ? width - count : 0, ' ');
}

std::string Escape(unsigned char control)
{
    constexpr char kDigits[] = "0123456789abcdef";
    return {'\\', 'x', kDigits[control >> 4], kDigits[control & 15]};
}

/// Whether it starts with one of U+0080 to U+009F, which terminals obey like those below the blank.
bool StartsWithHighControl(std::string_view utf8)
{
    return utf8.size() > 1 && utf8[0] == '\xC2' && (utf8[1] & 0xE0) == 0x80;
}

template <class Real> std::string ShortestText(Real number)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, result.ptr);
}

} // namespace

Failure NoSuch(const std::string &kind, const std::string &name, const std::vector<std::string> &choices)
{
    constexpr std::size_t kMostShown = 20;
    std::string message = "There is no " + kind + " \"" + OneLine(name) + "\"";
    const std::size_t shown = std::min(choices.size(), kMostShown);
    for (std::size_t i = 0; i < shown; ++i)
        message += (i == 0 ? ", only \"" : ", \"") + OneLine(choices[i]) + "\"";
    if (shown < choices.size())
        message += " and " + std::to_string(choices.size() - shown) + " more";
    return Failure(message);
}

std::string SystemMessage(int error)
{
    return std::generic_category().message(error);
}

void Output::Write(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        Fail();
}

void Output::Line(std::string_view text)
{
    Write(text);
    Write("\n");
}

void Output::Flush()
{
    if (!failed_ && std::fflush(stdout) != 0)
        Fail();
}

void Output::Fail()
{
    failed_ = true;
    throw Failure("standard output", SystemMessage(errno));
}

std::string OneLine(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n')
            line += "\\n";
        else if (c == '\t')
            line += "\\t";
        else if (byte < 0x20 || byte == 0x7F)
            line += Escape(byte);
        else if (StartsWithHighControl(text.substr(i)))
            line += Escape(static_cast<unsigned char>(text[++i]));
        else
            line += c;
    }
    return line;
}

std::string Quoted(std::u16string_view text)
{
    return "\"" + OneLine(project::ToUtf8(text)) + "\"";
}

std::string PadRight(std::string text, std::size_t width)
{
    return text + Blanks(text, width);
}

std::string PadLeft(std::string text, std::size_t width)
{
    return Blanks(text, width) + text;
}

std::string NumberText(float number)
{
    return ShortestText(number);
}

std::string NumberText(double number)
{
    return ShortestText(number);
}

std::string Counted(std::size_t count, const std::string &noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace marlet::tool
