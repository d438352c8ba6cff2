#include "CheckRows.h"

#include "output/Json.h"
#include "output/Warning.h"

#include <marlet/checks/FindingPlaces.h>

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

using Severity = LoadEntry::Severity;
constexpr const char *kOfLoad = "load";

/// The property that an entry is about, if it is about one.
std::string PropertyIn(const std::string &path)
{
    const std::string manager = "/PropertyManager/";
    const std::size_t at = path.rfind(manager);
    if (at == path.npos)
        return {};
    const std::size_t start = at + manager.size();
    return path.substr(start, path.find('/', start) - start);
}

/// The load tells at its place in the text what a check tells of the object. Of the two the check says more,
/// but for what the load alone knows: what is lost, and plug-ins that are not there.
class ToldTwice
{
public:
    explicit ToldTwice(const std::vector<Finding> &findings)
    {
        for (const Finding &finding : findings)
            if (!finding.ids.empty())
                findings_.emplace(finding.ids.front(), &finding);
    }

    bool operator()(const LoadEntry &entry) const
    {
        if (entry.severity > Severity::Warning)
            return false;
        return std::any_of(entry.ids.begin(), entry.ids.end(), [&](const kytl::KyID &id) {
            const auto [first, last] = findings_.equal_range(id);
            return std::any_of(first, last,
                               [&](const auto &finding) { return IsSame(entry, *finding.second); });
        });
    }

private:
    static bool IsSame(const LoadEntry &entry, const Finding &finding)
    {
        const auto says = [&entry](const char *words) { return entry.what.find(words) != entry.what.npos; };
        const bool isOfProperty = !finding.property.empty() && PropertyIn(entry.path) == finding.property;
        switch (finding.kind) {
        case FindingKind::DanglingID:
            return says("is not there") && entry.ids.front() == finding.named;
        case FindingKind::RepeatedID:
            return says("the ID is that of another one");
        case FindingKind::MissingFile:
            return says("the file is offline");
        case FindingKind::UnexpectedType:
        case FindingKind::MixedTypes:
            return isOfProperty && says("of another type");
        case FindingKind::SameTime:
            return isOfProperty && says("several key frames stand at");
        default:
            return false;
        }
    }

    std::unordered_multimap<kytl::KyID, const Finding *> findings_; ///< by the objects that they are of
};

} // namespace

CheckRows::CheckRows(const WideString &text, const LoadReport &report, std::vector<Finding> findings)
{
    AddEntries(report, findings);
    AddFindings(text, std::move(findings), !report.UnresolvedPlugins().empty());
    for (const CheckRow &row : rows_)
        ++counts_[static_cast<std::size_t>(row.severity)];
    const auto order = [](const CheckRow &row) {
        return row.place ? row.place->offset : std::numeric_limits<std::size_t>::max();
    };
    std::stable_sort(rows_.begin(), rows_.end(),
                     [&](const CheckRow &a, const CheckRow &b) { return order(a) < order(b); });
}

void CheckRows::AddEntries(const LoadReport &report, const std::vector<Finding> &findings)
{
    const ToldTwice isToldTwice(findings);
    for (const LoadEntry &entry : report.Entries())
        if (!isToldTwice(entry))
            rows_.push_back({entry.severity, PlaceOf(entry), kOfLoad, entry.path, entry.what, entry.ids});
}

void CheckRows::AddFindings(const WideString &text, std::vector<Finding> findings, bool loadToldOfPlugins)
{
    const auto places = PlacesInText(findings, text);
    for (std::size_t i = 0; i < findings.size(); ++i) {
        Finding &finding = findings[i];
        if (!loadToldOfPlugins || finding.kind != FindingKind::MissingPlugin)
            rows_.push_back({finding.severity, places[i], FindingKindName(finding.kind),
                             std::move(finding.place), std::move(finding.what), std::move(finding.ids),
                             std::move(finding.remedy)});
    }
}

std::size_t CheckRows::Problems() const
{
    return rows_.size() - Count(Severity::Note);
}

std::string CheckRows::CountsText() const
{
    constexpr struct {
        Severity severity;
        const char *one;
        const char *many;
    } kParts[] = {{Severity::Error, " error", " errors"},
                  {Severity::Loss, " loss", " losses"},
                  {Severity::Warning, " warning", " warnings"},
                  {Severity::Note, " note", " notes"}};
    std::string text;
    for (const auto &part : kParts)
        if (const std::size_t count = Count(part.severity); count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(count) + (count == 1 ? part.one : part.many);
    return text;
}

std::string RowText(const std::string &file, const CheckRow &row)
{
    if (row.kind == kOfLoad)
        return PlaceLine(file, row.place, row.severity, WhatAndWhere(row.what, row.object));
    return PlaceLine(file, row.place, row.severity, row.object + ": " + row.what + " [" + row.kind + "]");
}

std::string RowJson(const CheckRow &row)
{
    JsonWriter json;
    json.BeginObject()
        .Member("kind", row.kind)
        .Member("severity", SeverityName(row.severity))
        .Member("place", row.object)
        .Member("what", row.what);
    if (row.place)
        json.Member("line", row.place->line)
            .Member("column", row.place->column)
            .Member("offset", row.place->offset);
    json.Key("ids").BeginArray();
    for (const kytl::KyID &id : row.ids)
        json.Value(id);
    json.EndArray();
    if (!row.remedy.empty())
        json.Member("remedy", row.remedy);
    return json.EndObject().Text();
}

} // namespace marlet::tool
