#include <marlet/exchange/otio/OtioKept.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/otio/OtioSchema.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr kytl::KyID kComponent{0x3b8e51d2, 0x94a7, 0x4c60, {0xb1, 0x2d, 0x7e, 0x05, 0xc8, 0x6f, 0x19, 0xa4}};
constexpr unsigned int kIndex = 0;

bool IsEmpty(const Json &value)
{
    return value.empty() || (value.is_string() && value.get_ref<const NarrowString &>().empty());
}

} // namespace

NarrowString OtioKept::TextIn(const Project &project)
{
    const ProjectMetadata &metadata = project.Metadata();
    // Asking for a value that is not there would make it.
    return metadata.HasStringValue(kComponent, kIndex) ? ToUtf8(metadata.StringValue(kComponent, kIndex))
                                                       : NarrowString();
}

/// A text that is none of these was put there by somebody else, and counts as nothing.
OtioKept::OtioKept(const Project &project)
{
    const NarrowString text = TextIn(project);
    if (text.empty())
        return;
    try {
        const nlohmann::json all = ParseSortedJson(text);
        for (const auto &[id, item] : all.items())
            items_.emplace(id, Json(item));
    } catch (const ExchangeException &) {
        items_.clear();
    }
}

const Json &OtioKept::Of(const kytl::KyID &id, const char *what) const
{
    static const Json none;
    const auto found = items_.find(id.ToNarrowString());
    return found == items_.end() ? none : MemberOf(found->second, what);
}

void OtioKept::Keep(const kytl::KyID &id, const char *what, Json json)
{
    if (!IsEmpty(json))
        items_[id.ToNarrowString()][what] = std::move(json);
}

void OtioKept::Store(Project &project) const
{
    ProjectMetadata &metadata = project.Metadata();
    if (items_.empty())
        return metadata.RemoveStringValue(kComponent, kIndex);
    // Sorted, so that the same is kept as the same text, whoever wrote it last.
    metadata.SetStringValue(kComponent, kIndex, FromUtf8(nlohmann::json(items_).dump()));
}

Json ForeignPartOf(const Json &object, std::initializer_list<const char *> known)
{
    Json foreign = Json::object();
    if (!object.is_object())
        return foreign;
    for (const auto &[key, value] : object.items()) {
        if (std::ranges::find(known, std::string_view(key)) != known.end() || key == "OTIO_SCHEMA")
            continue;
        Json part = value;
        if (key == "metadata" && part.is_object())
            part.erase(kOwnKey);
        if (!IsEmpty(part))
            foreign[key] = std::move(part);
    }
    return foreign;
}

void AddForeignPart(Json &object, const Json &kept)
{
    if (!kept.is_object() || !object.is_object())
        return;
    for (const auto &[key, value] : kept.items()) {
        Json &member = object[key];
        if (IsEmpty(member)) {
            member = value;
        } else if (member.is_array() && value.is_array()) {
            member.insert(member.end(), value.begin(), value.end());
        } else {
            AddForeignPart(member, value);
        }
    }
}

} // namespace marlet::project
