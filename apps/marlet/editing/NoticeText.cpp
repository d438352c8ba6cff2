#include "NoticeText.h"

#include "output/Output.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/history/ChangeNotice.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

const char *KindName(ObjectKind kind)
{
    static constexpr const char *names[] = {
        "project",        "folder", "asset",      "layer",    "mask",  "path point", "tracker",
        "tracking point", "effect", "transition", "sequence", "track", "object",     "object of a host"};
    return names[static_cast<int>(kind)];
}

std::string AspectsText(const Aspects &aspects)
{
    static constexpr std::pair<Aspect, const char *> names[] = {
        {Aspect::Name, "name"},   {Aspect::Frames, "frames"},   {Aspect::Settings, "settings"},
        {Aspect::Links, "links"}, {Aspect::Members, "members"}, {Aspect::Properties, "properties"},
        {Aspect::Text, "text"},   {Aspect::File, "file"},       {Aspect::PrivateData, "private data"},
        {Aspect::View, "view"}};
    std::string text;
    for (const auto &[aspect, name] : names)
        if (aspects.Has(aspect))
            text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
}

/// The name in quotation marks if the object is there and has one, or else its ID.
std::string ObjectText(const Project &project, ObjectKind kind, const kytl::KyID &id)
{
    const auto sequence = project.Sequence();
    if (kind == ObjectKind::Asset)
        if (const auto asset = project.Assets().GetByID(id))
            return Quoted(asset->Name());
    if (kind == ObjectKind::Track && sequence)
        if (const auto track = sequence->FindSequenceTrackByID(id))
            return Quoted(track->Name());
    if (kind == ObjectKind::SequenceObject && sequence)
        if (const auto object = sequence->FindObjectByID(id))
            return Quoted(object->Name()) + " (" + id.ToNarrowString() + ")";
    if (kind == ObjectKind::Sequence && sequence && sequence->ID() == id)
        return Quoted(sequence->Name());
    return id.ToNarrowString();
}

std::string ChangeText(const Project &project, const ObjectChange &change)
{
    std::string text = std::string(KindName(change.kind)) + " " +
                       ObjectText(project, change.kind, change.id) + ": " + AspectsText(change.aspects);
    for (const PropertyChange &property : change.properties)
        text += ", " + property.name;
    for (const kytl::KyID &added : change.added)
        text += ", + " + added.ToNarrowString();
    for (const kytl::KyID &removed : change.removed)
        text += ", - " + removed.ToNarrowString();
    return text;
}

} // namespace

std::vector<std::string> NoticeLines(const Project &project, const ChangeNotice &notice)
{
    std::vector<std::string> lines{"step      " + Quoted(notice.Label())};
    for (const ObjectChange &change : notice.Changes())
        lines.push_back("changed   " + ChangeText(project, change));
    const auto sequence = project.Sequence();
    for (const StaleFrames &stale : notice.Stale()) {
        const bool isSequence = sequence && sequence->ID() == stale.timeline;
        const ObjectKind kind = isSequence ? ObjectKind::Sequence : ObjectKind::Asset;
        lines.push_back("stale     frames " + std::to_string(stale.first) + " to " +
                        std::to_string(stale.end) + " of " + ObjectText(project, kind, stale.timeline));
    }
    return lines;
}

} // namespace marlet::tool
