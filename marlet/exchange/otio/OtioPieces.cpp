#include <marlet/exchange/otio/OtioPieces.h>

#include <marlet/exchange/ExchangeException.h>
#include <marlet/foundation/xml/WellFormed.h>
#include <marlet/project/MediaPaths.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <optional>

namespace marlet::project
{

namespace
{

constexpr char kSequence[] = "EditorSequence";
constexpr char kObjects[] = "Objects";

NarrowString TextOf(const Project &project, const WideString &folder)
{
    std::optional<MediaPaths> paths;
    if (!folder.empty())
        paths.emplace(ToUtf8(folder), MediaPaths::Form::AsTheyAre);
    return project.SerializeUtf8();
}

std::vector<TextElement> ChildrenOf(const TextElement &list, std::string_view tag)
{
    std::vector<TextElement> children = list.Children();
    std::erase_if(children, [&](const TextElement &child) { return child.Tag() != tag; });
    return children;
}

[[noreturn]] void RefusePiece(std::string_view tag)
{
    throw ExchangeException("The metadata have a text that is no " + NarrowString(tag) + " of a project");
}

/// Nothing looks into a text that is not well-formed.
const NarrowString &RequireElement(const NarrowString &text, std::string_view tag)
{
    const XmlScan scan = ScanXml(text);
    if (scan.fault || scan.hasDocumentType || scan.tooDeep)
        RefusePiece(tag);
    return text;
}

} // namespace

NarrowString TextWith(const TextElement &element, std::vector<Change> changes)
{
    const std::string_view source = element.Source();
    std::ranges::stable_sort(changes, {}, [](const Change &change) { return change.old.data(); });
    NarrowString text;
    const char *at = source.data();
    for (const Change &change : changes) {
        if (change.old.data() < at)
            continue;
        text.append(at, change.old.data());
        text += change.text;
        at = change.old.data() + change.old.size();
    }
    return text.append(at, source.data() + source.size());
}

ProjectPieces::ProjectPieces(const Project &project, const WideString &folder)
    : text_(TextOf(project, folder))
{
}

std::vector<TextElement> ProjectPieces::Tracks(const char *list) const
{
    return ChildrenOf(text_.Root().Child(kSequence).Child(list), NarrowString(list) + "Track");
}

std::vector<TextElement> ProjectPieces::ObjectsOf(const TextElement &track)
{
    return ChildrenOf(track.Child(kObjects), track.Tag() == "VideoTrack" ? "VisualObject" : "AudioObject");
}

TextElement ProjectPieces::TransitionIn(const TextElement &object, const char *slot)
{
    return object.Child(slot).Child("Transition");
}

NarrowString ProjectPieces::TextWithoutTracks(const NarrowString &metadata) const
{
    std::vector<Change> changes;
    const TextElement sequence = text_.Root().Child(kSequence);
    for (const char *list : {"Video", "Audio"})
        changes.push_back({sequence.Child(list).Source(), "<" + NarrowString(list) + "/>"});
    if (!metadata.empty())
        for (const TextElement &item : text_.Root().Child("Metadata").Child("wstring").Children())
            if (item.Attribute("V") == metadata)
                changes.push_back({item.Source(), {}});
    return TextWith(text_.Root(), std::move(changes));
}

NarrowString ProjectPieces::TextWithoutObjects(const TextElement &track)
{
    return TextWith(track, {{track.Child(kObjects).Source(), "<Objects/>"}});
}

NarrowString ProjectPieces::TextWithoutTransitions(const TextElement &object,
                                                   const std::vector<const char *> &slots)
{
    std::vector<Change> changes;
    for (const char *slot : slots)
        changes.push_back({object.Child(slot).Source(), "<" + NarrowString(slot) + "/>"});
    return TextWith(object, std::move(changes));
}

LoosePiece::LoosePiece(const NarrowString &text, std::string_view tag) : text_(RequireElement(text, tag))
{
    if (Root().Tag() != tag)
        RefusePiece(tag);
}

kytl::KyID LoosePiece::IDIn(std::string_view tag) const
{
    try {
        return kytl::KyID::FromString(Child(tag).Text());
    } catch (const std::runtime_error &) {
        return {};
    }
}

bool LoosePiece::HasEmptySlot(const char *slot) const
{
    const TextElement element = Child(slot);
    return !element.IsNull() && element.AllAttributes().empty() && !element.HasChildren();
}

void LoosePiece::SetText(std::string_view tag, const NarrowString &text)
{
    if (Child(tag).Text() != text)
        Replace(tag, "<" + NarrowString(tag) + ">" + text + "</" + NarrowString(tag) + ">");
}

void LoosePiece::Replace(std::string_view tag, const NarrowString &elements)
{
    if (const TextElement child = Child(tag); !child.IsNull())
        changes_.push_back({child.Source(), elements});
}

} // namespace marlet::project
