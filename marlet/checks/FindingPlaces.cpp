#include <marlet/checks/FindingPlaces.h>

#include <marlet/foundation/xml/XmlReader.h>

#include <pugixml.hpp>

#include <algorithm>
#include <map>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace marlet::project
{

namespace
{

/// An object in the text, by its number, with the objects around it.
struct TextObject {
    kytl::KyID id;
    int around; ///< its number, or -1
    std::size_t offset;
};

std::size_t OffsetOf(const XmlCursor &element)
{
    return static_cast<std::size_t>(pugi::xml_node(element.Node()).offset_debug()) - 1;
}

/// The objects of a text that findings are of, and their properties.
class TextObjects
{
public:
    TextObjects(const XmlCursor &root, const std::vector<Finding> &findings)
    {
        for (const Finding &finding : findings)
            for (const kytl::KyID &id : finding.ids)
                numbers_[id];
        Collect(root, -1);
    }

    std::optional<std::size_t> Find(const Finding &finding)
    {
        for (auto id = finding.ids.begin(); id != finding.ids.end(); ++id) {
            const std::vector<kytl::KyID> chain(id, finding.ids.end());
            std::vector<int> same = numbers_[*id];
            std::erase_if(same, [&](int number) { return !IsWithin(number, chain); });
            if (same.empty())
                continue;
            std::size_t place = 0;
            if (finding.kind == FindingKind::RepeatedID && id == finding.ids.begin())
                place = std::min(++repetitions_[same.front()], same.size() - 1);
            const int number = same[place];
            const auto property = properties_.find({number, finding.property});
            return property == properties_.end() ? objects_[static_cast<std::size_t>(number)].offset
                                                 : property->second;
        }
        return std::nullopt;
    }

private:
    void Collect(const XmlCursor &element, int around)
    {
        if (const std::optional<kytl::KyID> id = IDOf(element); id && numbers_.contains(*id)) {
            const int number = static_cast<int>(objects_.size());
            objects_.push_back({*id, around, OffsetOf(element)});
            numbers_[*id].push_back(number);
            around = number;
        }
        const bool holdsProperties = element.Name() == "PropertyManager";
        for (XmlCursor child = element.FirstChild(); !child.IsNull(); child = child.Next()) {
            if (holdsProperties && around >= 0)
                properties_.try_emplace({around, NarrowString(child.Name())}, OffsetOf(child));
            Collect(child, around);
        }
    }

    /// What all layers have stands in an element of its own. A folder's list holds the IDs of its assets.
    static std::optional<kytl::KyID> IDOf(const XmlCursor &element)
    {
        if (element.Name() == "LayerBase" || element.Name() == "Assets")
            return std::nullopt;
        const XmlCursor base = element.Find("LayerBase");
        return (base.IsNull() ? element : base).FindID("ID");
    }

    bool IsWithin(int number, const std::vector<kytl::KyID> &chain) const
    {
        for (const kytl::KyID &id : chain) {
            while (number >= 0 && objects_[static_cast<std::size_t>(number)].id != id)
                number = objects_[static_cast<std::size_t>(number)].around;
            if (number < 0)
                return false;
        }
        return true;
    }

    std::vector<TextObject> objects_;
    std::unordered_map<kytl::KyID, std::vector<int>> numbers_; ///< in the order of the text
    std::map<std::pair<int, NarrowString>, std::size_t> properties_;
    std::map<int, std::size_t> repetitions_; ///< that were found so far, by the first object
};

} // namespace

std::vector<std::optional<TextPlace>> PlacesInText(const std::vector<Finding> &findings,
                                                   const WideString &text)
{
    std::vector<std::optional<TextPlace>> places(findings.size());
    const XmlDocument document(text);
    if (findings.empty() || document.Root().IsNull())
        return places;
    TextObjects objects(document.Root(), findings);
    std::vector<std::pair<std::size_t, std::size_t>> offsets; ///< with the numbers of their findings
    for (std::size_t i = 0; i < findings.size(); ++i)
        if (const auto offset = objects.Find(findings[i]))
            offsets.emplace_back(*offset, i);
    std::ranges::sort(offsets);
    const NarrowString utf8 = ToUtf8(text);
    TextPlace place;
    for (const auto &[offset, number] : offsets) {
        place.GoTo(utf8, offset);
        places[number] = place;
    }
    return places;
}

} // namespace marlet::project
