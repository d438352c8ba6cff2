#include "DifferenceText.h"

#include "output/Json.h"
#include "output/Output.h"

namespace marlet::tool
{

using project::Difference;

namespace
{

struct KindName {
    const char *sign;
    const char *word;
};

KindName NameOf(Difference::Kind kind)
{
    switch (kind) {
    case Difference::Kind::Added:
        return {"+", "added"};
    case Difference::Kind::Removed:
        return {"-", "removed"};
    case Difference::Kind::Moved:
        return {"^", "moved"};
    default:
        return {"~", "changed"};
    }
}

} // namespace

std::string DifferencePlace(const Difference &difference)
{
    std::string text;
    for (const std::string &place : difference.place)
        text += (text.empty() ? "" : ", ") + OneLine(place);
    if (!difference.what.empty())
        text += (text.empty() ? "" : ": ") + OneLine(difference.what);
    return text;
}

std::string DifferenceText(const Difference &difference)
{
    const KindName name = NameOf(difference.kind);
    const std::string place = DifferencePlace(difference);
    const std::string text = name.sign + (place.empty() ? "" : " " + place);
    const std::string before = OneLine(difference.before);
    const std::string after = OneLine(difference.after);
    if (difference.kind == Difference::Kind::Moved)
        return text + ": moved from place " + before + " to " + after;
    if (difference.kind == Difference::Kind::Changed)
        return text + " " + before + " -> " + after;
    return text + " " + name.word;
}

void WriteDifference(JsonWriter &json, const Difference &difference)
{
    json.Member("change", NameOf(difference.kind).word).Key("place").BeginArray();
    for (const std::string &place : difference.place)
        json.Value(OneLine(place));
    json.EndArray();
    if (!difference.what.empty())
        json.Member("what", OneLine(difference.what));
    if (!difference.before.empty() || !difference.after.empty())
        json.Member("before", OneLine(difference.before)).Member("after", OneLine(difference.after));
}

} // namespace marlet::tool
