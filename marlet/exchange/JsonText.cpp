#include <marlet/exchange/JsonText.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/foundation/TextPlace.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr int kDeepest = 256;
constexpr int kIndent = 4;

[[noreturn]] void Refuse(std::string_view text, std::size_t at, const char *what)
{
    TextPlace place;
    place.GoTo(text, std::min(at, text.size()));
    throw ExchangeException("Line " + std::to_string(place.line) + ", column " +
                            std::to_string(place.column) + ": " + what);
}

/// Brackets in texts do not count.
void RequireShallow(std::string_view text)
{
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
        else if (!isInText && (c == ']' || c == '}'))
            --depth;
    }
}

} // namespace

Json ParseJson(std::string_view text)
{
    RequireShallow(text);
    try {
        return Json::parse(text);
    } catch (const Json::parse_error &error) {
        Refuse(text, error.byte > 0 ? error.byte - 1 : 0, "the text is not JSON");
    } catch (const Json::exception &) {
        throw ExchangeException("A number in the text is larger than numbers can be");
    }
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
