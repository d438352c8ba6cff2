#include <marlet/recovery/RecoveredTree.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// What stands around layers and objects.
bool StandsAroundItems(std::string_view tag)
{
    constexpr std::string_view kTags[] = {"Project",        "AssetList", "Assets", "CompositionAsset",
                                          "EditorSequence", "Video",     "Audio",  "VideoTrack",
                                          "AudioTrack"};
    return HoldsItems(tag) || std::ranges::find(kTags, tag) != std::end(kTags);
}

} // namespace

bool HoldsItems(std::string_view tag)
{
    return tag == "Layers" || tag == "Objects";
}

bool IsList(std::string_view tag)
{
    constexpr std::string_view kTags[] = {
        "Assets",   "Layers",    "Video",      "Audio",  "Objects", "Effects", "Masks",          "Points",
        "Trackers", "Animation", "SubFolders", "Tokens", "Formats", "InTrans", "OutTrans",       "Views",
        "UIState",  "bool",      "int32_t",    "float",  "KyID",    "wstring", "PropertyManager"};
    return std::ranges::find(kTags, tag) != std::end(kTags);
}

bool IsProjectTag(std::string_view tag)
{
    const auto lower = [](char c) { return static_cast<char>(c | 0x20); };
    return std::ranges::equal(tag, std::string_view("project"), {}, lower);
}

std::string Bracketed(std::string_view tag)
{
    return "<" + std::string(tag) + ">";
}

RecoveredElement *RecoveredElement::Child(std::string_view tag) const
{
    const auto found = std::ranges::find(children, tag, &RecoveredElement::name);
    return found == children.end() ? nullptr : *found;
}

RecoveredTree::RecoveredTree(std::string text) : text_(std::move(text))
{
    RecoveredElement &root = Make();
    root.name = "Project";
    root.attributes = " Version=\"0\"";
    root.isMade = true;
    root.isIntact = false;
}

RecoveredElement &RecoveredTree::Make()
{
    return elements_.emplace_back();
}

std::string_view RecoveredTree::Keep(std::string text)
{
    return kept_.emplace_back(std::move(text));
}

void RecoveredTree::Spoil(RecoveredElement *element)
{
    for (; element && element->isIntact; element = element->parent)
        element->isIntact = false;
}

void RecoveredTree::Append(RecoveredElement &parent, RecoveredElement &child)
{
    child.parent = &parent;
    parent.children.push_back(&child);
}

void RecoveredTree::Remove(RecoveredElement &element)
{
    std::erase(element.parent->children, &element);
    Spoil(element.parent);
}

void RecoveredTree::Write(RecoveredElement &element, std::string &to, bool withItems, std::size_t depth) const
{
    element.writtenAt = to.size();
    element.isSlice = element.isIntact && (withItems || !StandsAroundItems(element.name));
    if (element.isSlice) {
        to += std::string_view(text_).substr(element.start, element.end - element.start);
    } else {
        ((to += '<') += element.name) += element.attributes;
        if (!element.children.empty() && (withItems || !HoldsItems(element.name))) {
            to += '>';
            for (RecoveredElement *child : element.children) {
                (to += '\n').append(depth + 1, ' ');
                Write(*child, to, withItems, depth + 1);
            }
            (to += '\n').append(depth, ' ');
            ((to += "</") += element.name) += '>';
        } else if (element.content.empty()) {
            to += "/>";
        } else {
            (((to += '>') += element.content) += "</") += element.name;
            to += '>';
        }
    }
    element.writtenSize = to.size() - element.writtenAt;
}

RecoveredElement &RecoveredTree::At(RecoveredElement &written, std::size_t place)
{
    RecoveredElement *element = &written;
    std::size_t elementAt = written.writtenAt;
    bool isSlice = written.isSlice;
    for (;;) {
        if (elementAt == place)
            return *element;
        RecoveredElement *next = nullptr;
        for (RecoveredElement *child : element->children) {
            const std::size_t at = isSlice ? elementAt + (child->start - element->start) : child->writtenAt;
            const std::size_t size = isSlice ? child->end - child->start : child->writtenSize;
            if (place >= at && place < at + size) {
                next = child;
                elementAt = at;
                break;
            }
        }
        if (!next)
            return *element;
        element = next;
        isSlice = isSlice || next->isSlice;
    }
}

} // namespace marlet::project
