#include <marlet/exchange/JsonText.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/foundation/TextPlace.h>

#include <algorithm>
#include <array>
#include <limits>

namespace marlet::project
{

namespace
{

constexpr int kDeepest = 256;
constexpr int kMostMembers = 10000;
constexpr int kIndent = 4;

[[noreturn]] void Refuse(std::string_view text, std::size_t at, const char *what)
{
    TextPlace place;
    place.GoTo(text, std::min(at, text.size()));
    throw ExchangeException("Line " + std::to_string(place.line) + ", column " +
                            std::to_string(place.column) + ": " + what);
}

/// Brackets and colons in texts do not count.
void RequireSmall(std::string_view text, int mostMembers)
{
    std::array<int, kDeepest + 1> members{};
    int depth = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (isInText && c == '\\')
            ++at;
        else if (c == '"')
            isInText = !isInText;
        else if (!isInText && (c == '[' || c == '{') && ++depth > kDeepest)
            Refuse(text, at, "the JSON is nested too deep");
        else if (!isInText && (c == '[' || c == '{'))
            members[static_cast<std::size_t>(depth)] = 0;
        else if (!isInText && c == ':' && ++members[static_cast<std::size_t>(depth)] > mostMembers)
            Refuse(text, at, "an object of the JSON has too many members");
        else if (!isInText && (c == ']' || c == '}'))
            depth = std::max(depth - 1, 0);
    }
}

template <class Value> Value Parsed(std::string_view text)
{
    try {
        return Value::parse(text);
    } catch (const nlohmann::json::parse_error &error) {
        Refuse(text, error.byte > 0 ? error.byte - 1 : 0, "the text is not JSON");
    } catch (const nlohmann::json::exception &) {
        throw ExchangeException("A number in the text is larger than numbers can be");
    }
}

} // namespace

Json ParseJson(std::string_view text)
{
    RequireSmall(text, kMostMembers);
    return Parsed<Json>(text);
}

nlohmann::json ParseSortedJson(std::string_view text)
{
    RequireSmall(text, std::numeric_limits<int>::max());
    return Parsed<nlohmann::json>(text);
}

NarrowString JsonTextOf(const Json &value)
{
    return value.dump(kIndent);
}

NarrowString ShortJsonTextOf(const Json &value)
{
    return value.dump();
}

const Json &MemberOf(const Json &object, std::string_view key)
{
    static const Json none;
    if (!object.is_object())
        return none;
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

NarrowString TextMemberOf(const Json &object, std::string_view key)
{
    const Json &member = MemberOf(object, key);
    return member.is_string() ? member.get<NarrowString>() : NarrowString();
}

} // namespace marlet::project
