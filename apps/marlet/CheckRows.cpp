#include "CheckRows.h"

#include "Json.h"
#include "Output.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

using Severity = LoadEntry::Severity;
using IDSet = std::unordered_set<kytl::KyID>;

constexpr const char *kOfLoad = "load";

/// The load tells at its place in the text what a check tells of the object. Of the two the check says more,
/// but for what the load alone knows: what is lost, and plug-ins that are not there.
class ToldTwice
{
public:
    explicit ToldTwice(const std::vector<Finding> &findings)
    {
        for (const Finding &finding : findings) {
            if (finding.kind == FindingKind::DanglingID)
                ids_.insert(finding.named);
            else if (!finding.ids.empty() &&
                     (finding.kind == FindingKind::RepeatedID || finding.kind == FindingKind::MissingFile))
                ids_.insert(finding.ids.front());
        }
    }

    bool operator()(const LoadEntry &entry) const
    {
        if (entry.severity > Severity::Warning)
            return false;
        const bool isOfValue = entry.path.find("/PropertyManager/") != entry.path.npos;
        return isOfValue || std::any_of(entry.ids.begin(), entry.ids.end(),
                                        [this](const kytl::KyID &id) { return ids_.count(id) > 0; });
    }

private:
    IDSet ids_;
};

/// The innermost object around what was found that the text gives an ID.
TextPlace PlaceOf(const Finding &finding, const std::unordered_map<kytl::KyID, TextPlace> &places)
{
    for (const kytl::KyID &id : finding.ids)
        if (const auto found = places.find(id); found != places.end())
            return found->second;
    return {};
}

} // namespace

CheckRows::CheckRows(const WideString &text, const LoadReport &report, std::vector<Finding> findings)
{
    AddEntries(report, findings);
    AddFindings(text, std::move(findings), !report.UnresolvedPlugins().empty());
    for (const CheckRow &row : rows_)
        ++counts_[static_cast<std::size_t>(row.severity)];
    const auto order = [](const CheckRow &row) {
        return std::tuple(row.place.line == 0, row.place.line, row.place.column);
    };
    std::stable_sort(rows_.begin(), rows_.end(),
                     [&](const CheckRow &a, const CheckRow &b) { return order(a) < order(b); });
}

void CheckRows::AddEntries(const LoadReport &report, const std::vector<Finding> &findings)
{
    const ToldTwice isToldTwice(findings);
    for (const LoadEntry &entry : report.Entries())
        if (!isToldTwice(entry))
            rows_.push_back(
                {entry.severity, {entry.line, entry.column}, kOfLoad, entry.path, entry.what, entry.ids});
}

void CheckRows::AddFindings(const WideString &text, std::vector<Finding> findings, bool loadToldOfPlugins)
{
    IDSet ids;
    for (const Finding &finding : findings)
        ids.insert(finding.ids.begin(), finding.ids.end());
    const auto places = PlacesInText(text, ids);
    for (Finding &finding : findings)
        if (!loadToldOfPlugins || finding.kind != FindingKind::MissingPlugin)
            rows_.push_back({finding.severity, PlaceOf(finding, places), FindingKindName(finding.kind),
                             std::move(finding.place), std::move(finding.what), std::move(finding.ids),
                             std::move(finding.remedy)});
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
    std::string line = file + ":";
    if (row.place.line > 0)
        line += std::to_string(row.place.line) + ":" + std::to_string(row.place.column) + ":";
    line += std::string(" ") + SeverityName(row.severity) + ": ";
    if (row.kind == kOfLoad)
        line += row.what + (row.object.empty() ? "" : " (" + row.object + ")");
    else
        line += row.object + ": " + row.what + " [" + row.kind + "]";
    return OneLine(line);
}

std::string RowJson(const CheckRow &row)
{
    JsonWriter json;
    json.BeginObject()
        .Member("kind", row.kind)
        .Member("severity", SeverityName(row.severity))
        .Member("place", row.object)
        .Member("what", row.what);
    if (row.place.line > 0)
        json.Member("line", row.place.line).Member("column", row.place.column);
    json.Key("ids").BeginArray();
    for (const kytl::KyID &id : row.ids)
        json.Value(id);
    json.EndArray();
    if (!row.remedy.empty())
        json.Member("remedy", row.remedy);
    return json.EndObject().Text();
}

} // namespace marlet::tool
