#include "MetadataItems.h"

#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <charconv>
#include <string_view>

namespace marlet::tool
{

namespace
{

/// What lies between two texts, from a position on, which then stands behind it; nothing if they do not
/// follow.
std::string_view TakeBetween(std::string_view text, std::size_t &position, std::string_view before,
                             std::string_view after)
{
    const std::size_t found = text.find(before, position);
    if (found == std::string_view::npos)
        return {};
    const std::size_t start = found + before.size();
    const std::size_t end = text.find(after, start);
    if (end == std::string_view::npos)
        return {};
    position = end + after.size();
    return text.substr(start, end - start);
}

std::string ResolvedEntity(std::string_view name)
{
    if (name == "lt")
        return "<";
    if (name == "gt")
        return ">";
    if (name == "amp")
        return "&";
    if (name == "quot")
        return "\"";
    if (name == "apos")
        return "'";
    const bool hexadecimal = name.substr(0, 2) == "#x";
    unsigned int code = 0;
    std::from_chars(name.data() + (hexadecimal ? 2 : 1), name.data() + name.size(), code,
                    hexadecimal ? 16 : 10);
    return std::string(1, static_cast<char>(code)); // line ends and tabs
}

std::string Unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text[i] == '&' ? text.find(';', i) : std::string_view::npos;
        if (end == std::string_view::npos) {
            result += text[i];
        } else {
            result += ResolvedEntity(text.substr(i + 1, end - i - 1));
            i = end;
        }
    }
    return result;
}

/// The text of a project without its assets and sequence, which are long and say nothing of the metadata.
std::string TextOfTheRest(project::Project &project)
{
    project::AssetList::Assets assets;
    assets.swap(project.Assets().All());
    std::shared_ptr<project::EditorSequence> sequence = project.Sequence();
    project.SetSequence(nullptr);
    const std::string text = project::ToUtf8(project.Serialize());
    assets.swap(project.Assets().All());
    project.SetSequence(std::move(sequence));
    return text;
}

} // namespace

/// Metadata answers only to those who know their own IDs and indices, and the keys do not lead back to them.
/// All that is there stands in the project's text, where each section is an element of a fixed form.
std::vector<MetadataItem> MetadataItems(project::Project &project)
{
    const std::string saved = TextOfTheRest(project);
    const std::size_t start = saved.rfind("\n <Metadata ");
    if (start == std::string::npos)
        return {};
    const std::string_view metadata = std::string_view(saved).substr(start);

    std::vector<MetadataItem> items;
    for (const char *type : {"bool", "int32_t", "float", "KyID", "wstring"}) {
        const std::string tag = type;
        std::size_t position = 0;
        const std::string_view section =
            TakeBetween(metadata, position, "\n  <" + tag + ">", "\n  </" + tag + ">");
        std::size_t at = 0;
        for (;;) {
            const std::string_view key = TakeBetween(section, at, "<Item K=\"", "\"");
            if (key.empty())
                break;
            const std::string_view value = TakeBetween(section, at, "V=\"", "\"");
            items.push_back({tag, std::string(key), Unescaped(value)});
        }
    }
    return items;
}

} // namespace marlet::tool
