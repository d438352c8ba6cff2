#include "ProjectDiff.h"

#include "DocumentElement.h"
#include "Output.h"

#include <marlet/foundation/Strings.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <set>
#include <unordered_map>

namespace marlet::tool
{

using namespace project;

namespace
{

/// What people call an element; those that only hold others together have no name of their own.
const std::unordered_map<std::string, std::string> &Nouns()
{
    static const std::unordered_map<std::string, std::string> nouns{
        {"Project", ""},
        {"AssetList", ""},
        {"Assets", ""},
        {"Layers", ""},
        {"LayerBase", ""},
        {"PropertyManager", ""},
        {"Animation", ""},
        {"Static", "static value"},
        {"Default", "default value"},
        {"Value", "value"},
        {"Effects", ""},
        {"Masks", ""},
        {"Trackers", ""},
        {"Points", ""},
        {"MotionPath", ""},
        {"Video", ""},
        {"Audio", ""},
        {"Objects", ""},
        {"InTrans", "incoming transition"},
        {"OutTrans", "outgoing transition"},
        {"Transition", ""},
        {"Instances", ""},
        {"Metadata", "metadata"},
        {"MediaAsset", "media"},
        {"ImageAsset", "image"},
        {"SolidAsset", "solid"},
        {"CompositionAsset", "composition"},
        {"BinFolder", "folder"},
        {"AssetLayer", "layer"},
        {"CameraLayer", "camera"},
        {"LightLayer", "light"},
        {"PointLayer", "null point"},
        {"TextLayer", "text layer"},
        {"GradeLayer", "grade"},
        {"Effect3DLayer", "3D effect layer"},
        {"Instance", "effect"},
        {"Mask", "mask"},
        {"Point", "path point"},
        {"Tracker", "tracker"},
        {"Primary", "primary point"},
        {"Secondary", "secondary point"},
        {"Key", "key frame"},
        {"EditorSequence", "sequence"},
        {"VideoTrack", "video track"},
        {"AudioTrack", "audio track"},
        {"VisualObject", "picture"},
        {"AudioObject", "sound"},
        {"ViewerState", "viewer"},
        {"AudioVideoSettings", "format"},
        {"RenderSettings", "render settings"},
        {"ProjectSettings", "settings"},
    };
    return nouns;
}

const DocumentElement &BaseOf(const DocumentElement &element)
{
    const DocumentElement *base = element.Child("LayerBase");
    return base ? *base : element;
}

/// How an element is found again among the children of another one. What has neither an ID nor a name of any
/// kind is known by its tag and its turn among those of that tag.
std::string Identity(const DocumentElement &element)
{
    for (const std::string &id : {BaseOf(element).ChildText("ID"), element.Attribute("ID")})
        if (!id.empty())
            return id;
    if (element.tag == "Key")
        return "at " + element.Attribute("Time");
    return element.tag + " " + element.Attribute("name") + element.Attribute("Name") + element.Attribute("K");
}

bool IsValue(const DocumentElement &element)
{
    return element.tag == "Static" || element.tag == "Value" || element.tag == "Default";
}

bool HasOrder(const DocumentElement &element)
{
    return !BaseOf(element).ChildText("ID").empty();
}

/// A value on one line: "12.5", "(1, 2, 0)".
std::string Text(const DocumentElement &element)
{
    if (IsValue(element) && element.children.size() == 1)
        return Text(element.children[0]);
    if (!element.text.empty() || element.attributes.empty())
        return OneLine(element.text);
    if (const std::string transition = element.Attribute("transID"); !transition.empty())
        return transition;
    std::string text = "(";
    for (const auto &[name, value] : element.attributes)
        text += (text.size() > 1 ? ", " : "") + OneLine(value);
    return text + ")";
}

std::string Name(const DocumentElement &element, const DocumentElement *owner)
{
    if (owner && owner->tag == "PropertyManager")
        return "property " + element.tag;
    const auto noun = Nouns().find(element.tag);
    const std::string kind = noun == Nouns().end() ? element.tag : noun->second;
    if (element.tag == "Key")
        return kind + " at " + element.Attribute("Time") + " ms";
    for (const std::string &name : {BaseOf(element).ChildText("Name"), element.Attribute("name")})
        if (!name.empty() && !kind.empty())
            return kind + " " + Quoted(FromUtf8(name));
    return kind;
}

/// What people call an element that holds no others.
std::string FieldName(const DocumentElement &element, const DocumentElement &owner)
{
    if (owner.tag == "Instances")
        return "use by " + element.Attribute("ID");
    if (element.tag == "Item")
        return "item " + element.Attribute("K");
    const auto noun = Nouns().find(element.tag);
    return noun == Nouns().end() || noun->second.empty() ? element.tag : noun->second;
}

/// Where in the sequence an object is, since several often have one name.
std::string Span(const DocumentElement &element)
{
    if (element.tag != "VisualObject" && element.tag != "AudioObject")
        return "";
    return " of frames " + element.ChildText("StartFrame") + " to " + element.ChildText("EndFrame");
}

class Comparison
{
public:
    void Compare(const DocumentElement &before, const DocumentElement &after, const DocumentElement *owner)
    {
        const std::string name = Name(before, owner);
        if (!name.empty())
            place_.push_back(name);
        CompareAttributes(before, after);
        if (before.children.empty() && after.children.empty()) {
            if (before.text != after.text)
                Report(Difference::Kind::Changed, "", OneLine(before.text), OneLine(after.text));
        } else {
            CompareChildren(before, after);
        }
        if (!name.empty())
            place_.pop_back();
    }

    std::vector<Difference> Take() { return std::move(differences_); }

private:
    using Places = std::unordered_map<std::string, std::size_t>;

    void Report(Difference::Kind kind, const std::string &what, const std::string &before,
                const std::string &after)
    {
        differences_.push_back({kind, place_, what, before, after});
    }

    void CompareAttributes(const DocumentElement &before, const DocumentElement &after)
    {
        std::set<std::string> names;
        for (const DocumentElement *element : {&before, &after})
            for (const auto &[name, value] : element->attributes)
                names.insert(name);
        for (const std::string &name : names)
            if (before.Attribute(name) != after.Attribute(name))
                Report(Difference::Kind::Changed, name, OneLine(before.Attribute(name)),
                       OneLine(after.Attribute(name)));
    }

    /// The children's places by their identities; of several with the same one, the later are numbered.
    static std::vector<std::string> Identities(const DocumentElement &element)
    {
        std::vector<std::string> identities;
        std::unordered_map<std::string, int> turns;
        for (const DocumentElement &child : element.children) {
            const std::string identity = Identity(child);
            const int turn = ++turns[identity];
            identities.push_back(turn == 1 ? identity : identity + " #" + std::to_string(turn));
        }
        return identities;
    }

    static Places PlacesOf(const std::vector<std::string> &identities)
    {
        Places places;
        for (std::size_t i = 0; i < identities.size(); ++i)
            places.emplace(identities[i], i);
        return places;
    }

    void CompareChildren(const DocumentElement &before, const DocumentElement &after)
    {
        const std::vector<std::string> old = Identities(before);
        const std::vector<std::string> current = Identities(after);
        const Places oldPlaces = PlacesOf(old);
        const Places places = PlacesOf(current);
        for (std::size_t i = 0; i < old.size(); ++i) {
            const auto found = places.find(old[i]);
            if (found == places.end())
                ReportWhole(Difference::Kind::Removed, before.children[i], before);
            else
                CompareChild(before.children[i], after.children[found->second], before);
        }
        for (std::size_t i = 0; i < current.size(); ++i)
            if (oldPlaces.find(current[i]) == oldPlaces.end())
                ReportWhole(Difference::Kind::Added, after.children[i], after);
        ReportMoves(before, old, places);
    }

    void CompareChild(const DocumentElement &before, const DocumentElement &after,
                      const DocumentElement &owner)
    {
        const bool isField =
            before.children.empty() && after.children.empty() && owner.tag != "PropertyManager";
        if (!isField && !IsValue(before))
            return Compare(before, after, &owner);
        if (Text(before) == Text(after) && before.attributes == after.attributes &&
            (before.children.empty() || before.children[0].tag == after.children[0].tag))
            return;
        Report(Difference::Kind::Changed, IsValue(before) ? Name(before, nullptr) : FieldName(before, owner),
               Text(before), Text(after));
    }

    void ReportWhole(Difference::Kind kind, const DocumentElement &element, const DocumentElement &owner)
    {
        const bool isField = element.children.empty() && owner.tag != "PropertyManager";
        const bool isRemoved = kind == Difference::Kind::Removed;
        if (isField)
            return Report(kind, FieldName(element, owner), isRemoved ? Text(element) : "",
                          isRemoved ? "" : Text(element));
        // The place of a transition says already what it is.
        if (element.tag == "Transition")
            return Report(kind, "", "", "");
        const std::string name = Name(element, &owner) + Span(element);
        place_.push_back(name.empty() ? element.tag : name);
        Report(kind, "", "", "");
        place_.pop_back();
    }

    /// Of what both have, the longest run that is still in order stays; the rest was moved.
    void ReportMoves(const DocumentElement &before, const std::vector<std::string> &old, const Places &places)
    {
        std::vector<std::size_t> kept;
        std::vector<std::size_t> targets;
        for (std::size_t i = 0; i < old.size(); ++i) {
            const auto found = places.find(old[i]);
            if (found == places.end() || !HasOrder(before.children[i]))
                continue;
            kept.push_back(i);
            targets.push_back(found->second);
        }
        const std::vector<bool> stays = LongestRise(targets);
        for (std::size_t i = 0; i < kept.size(); ++i) {
            if (stays[i])
                continue;
            place_.push_back(Name(before.children[kept[i]], &before));
            Report(Difference::Kind::Moved, "", std::to_string(kept[i] + 1), std::to_string(targets[i] + 1));
            place_.pop_back();
        }
    }

    /// Which of the numbers belong to a longest rising sequence (patience sorting).
    static std::vector<bool> LongestRise(const std::vector<std::size_t> &numbers)
    {
        std::vector<std::size_t> tails; ///< the end of the best sequence of each length
        std::vector<std::size_t> previous(numbers.size(), numbers.size());
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const auto at =
                std::lower_bound(tails.begin(), tails.end(), i, [&](std::size_t tail, std::size_t index) {
                    return numbers[tail] < numbers[index];
                });
            if (at != tails.begin())
                previous[i] = *(at - 1);
            if (at == tails.end())
                tails.push_back(i);
            else
                *at = i;
        }
        std::vector<bool> isIn(numbers.size());
        for (std::size_t i = tails.empty() ? numbers.size() : tails.back(); i < numbers.size();
             i = previous[i])
            isIn[i] = true;
        return isIn;
    }

    std::vector<std::string> place_;
    std::vector<Difference> differences_;
};

} // namespace

std::vector<Difference> CompareProjects(const Project &before, const Project &after)
{
    Comparison comparison;
    comparison.Compare(ParseDocument(before.Serialize()), ParseDocument(after.Serialize()), nullptr);
    return comparison.Take();
}

} // namespace marlet::tool
