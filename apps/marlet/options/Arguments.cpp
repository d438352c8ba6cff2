#include "Arguments.h"

#include "output/Failure.h"
#include "output/TextFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

namespace marlet::tool
{

namespace
{

/// A number that takes up the whole text, which may have a plus sign.
template <class Number> std::optional<Number> ParseNumber(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    Number number{};
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<IntegerRange> ParseRange(std::string_view text)
{
    const std::size_t dots = text.find("..");
    const std::optional<int> first = ParseNumber<int>(text.substr(0, dots));
    const std::optional<int> last =
        dots == std::string_view::npos ? first : ParseNumber<int>(text.substr(dots + 2));
    if (!first || !last || *first > *last)
        return std::nullopt;
    return IntegerRange{*first, *last};
}

UsageError Malformed(const std::string &option, const std::string &text, const std::string &wanted)
{
    return UsageError(option + ": \"" + text + "\" is not " + wanted);
}

template <class Number> Number ParseFinite(const std::string &option, const std::string &text)
{
    const std::optional<Number> number = ParseNumber<Number>(text);
    if (!number || !std::isfinite(*number))
        throw Malformed(option, text, "a number");
    return *number;
}

} // namespace

Arguments::Arguments(const CommandSpec &command, const std::vector<std::string> &words)
{
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-')
            operands_.push_back(word);
        else if (word == "--")
            optionsEnded = true;
        else
            i = TakeOption(command, words, i);
    }
    if (operands_.size() < command.leastOperands)
        throw UsageError("a file name is missing");
    if (operands_.size() > command.mostOperands)
        throw UsageError("\"" + operands_[command.mostOperands] + "\" is one too many");
    if (std::any_of(operands_.begin(), operands_.end(), [](const std::string &o) { return o.empty(); }))
        throw UsageError("a name is empty");
}

/// The index of the last word that belongs to the option.
std::size_t Arguments::TakeOption(const CommandSpec &command, const std::vector<std::string> &words,
                                  std::size_t index)
{
    const std::string &word = words[index];
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const auto option = std::find_if(command.options.begin(), command.options.end(),
                                     [&](const OptionSpec &candidate) { return candidate.name == name; });
    if (option == command.options.end())
        throw UsageError("there is no option " + name);

    std::string value;
    if (option->placeholder.empty()) {
        if (equals != std::string::npos)
            throw UsageError(name + " takes no value");
    } else if (equals != std::string::npos) {
        value = word.substr(equals + 1);
    } else {
        if (++index == words.size())
            throw UsageError(name + " needs a value");
        value = words[index];
    }
    if (!options_.emplace(name, value).second)
        throw UsageError(name + " is given twice");
    return index;
}

const std::string &Arguments::Text(const std::string &option) const
{
    const auto found = options_.find(option);
    if (found == options_.end())
        throw UsageError(option + " is missing");
    return found->second;
}

const std::string &Arguments::Path(const std::string &option) const
{
    const std::string &path = Text(option);
    if (path.empty())
        throw UsageError(option + ": a file name is empty");
    return path;
}

const std::string &Arguments::NewPath(const std::string &option) const
{
    const std::string &path = Path(option);
    if (std::any_of(operands_.begin(), operands_.end(),
                    [&](const std::string &operand) { return IsSameFile(operand, path); }))
        throw UsageError(option + ": \"" + path + "\" is a file that is read from");
    return path;
}

int Arguments::Integer(const std::string &option) const
{
    const std::string &text = Text(option);
    const std::optional<int> number = ParseNumber<int>(text);
    if (!number)
        throw Malformed(option, text, "a whole number");
    return *number;
}

double Arguments::Real(const std::string &option) const
{
    return ParseFinite<double>(option, Text(option));
}

float Arguments::Float(const std::string &option) const
{
    return ParseFinite<float>(option, Text(option));
}

std::vector<IntegerRange> Arguments::Ranges(const std::string &option) const
{
    const std::string &text = Text(option);
    std::vector<IntegerRange> ranges;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        const std::optional<IntegerRange> range =
            ParseRange(std::string_view(text).substr(start, comma - start));
        if (!range)
            throw Malformed(option, text, "a list of whole numbers and ranges, such as 0,5,7 or 0..100");
        ranges.push_back(*range);
        start = comma + 1;
    }
    return ranges;
}

PixelPosition Arguments::Position(const std::string &option) const
{
    const std::string &text = Text(option);
    const std::size_t comma = std::min(text.find(','), text.size());
    const auto x = ParseNumber<float>(std::string_view(text).substr(0, comma));
    const auto y = ParseNumber<float>(std::string_view(text).substr(std::min(comma + 1, text.size())));
    if (!x || !y || !std::isfinite(*x) || !std::isfinite(*y))
        throw Malformed(option, text, "a position, such as 12.5,-40");
    return {*x, *y};
}

PixelSize Arguments::Size(const std::string &option) const
{
    const std::string &text = Text(option);
    const std::size_t by = std::min(text.find('x'), text.size());
    const std::optional<int> width = ParseNumber<int>(std::string_view(text).substr(0, by));
    const std::optional<int> height =
        ParseNumber<int>(std::string_view(text).substr(std::min(by + 1, text.size())));
    if (!width || !height || *width < 1 || *height < 1)
        throw Malformed(option, text, "a size, such as 640x480");
    return {*width, *height};
}

PixelSize Arguments::Size(const std::string &option, int longestSide) const
{
    const PixelSize size = Size(option);
    if (std::max(size.width, size.height) > longestSide)
        throw UsageError(option + ": no side is longer than " + std::to_string(longestSide));
    return size;
}

} // namespace marlet::tool
