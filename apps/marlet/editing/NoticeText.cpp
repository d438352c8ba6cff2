#include "NoticeText.h"

#include "Standings.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/history/ChangeNotice.h>

#include <unordered_set>

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

std::vector<std::string> AspectNames(const Aspects &aspects)
{
    static constexpr std::pair<Aspect, const char *> names[] = {
        {Aspect::Name, "name"},   {Aspect::Frames, "frames"},   {Aspect::Settings, "settings"},
        {Aspect::Links, "links"}, {Aspect::Members, "members"}, {Aspect::Properties, "properties"},
        {Aspect::Text, "text"},   {Aspect::File, "file"},       {Aspect::PrivateData, "private data"},
        {Aspect::View, "view"}};
    std::vector<std::string> found;
    for (const auto &[aspect, name] : names)
        if (aspects.Has(aspect))
            found.emplace_back(name);
    return found;
}

using Standing = Standings::Standing;

/// "moved from 10 to 20", or nothing if both are the same.
std::string MoveText(const Standing &was, const Standing &is)
{
    const auto text = [](int frame) { return std::to_string(frame); };
    if (was.startFrame == is.startFrame && was.endFrame == is.endFrame)
        return "";
    if (was.endFrame - was.startFrame == is.endFrame - is.startFrame)
        return "moved from " + text(was.startFrame) + " to " + text(is.startFrame);
    return "frames " + text(was.startFrame) + " to " + text(was.endFrame) + " became " + text(is.startFrame) +
           " to " + text(is.endFrame);
}

/// Tells of the changes of one notice.
class NoticeTeller
{
public:
    NoticeTeller(const ChangeNotice &notice, const Standings &before, const Standings &after)
        : notice_(notice), before_(before), after_(after)
    {
        for (const ObjectChange &change : notice.Changes())
            named_.insert(change.id);
    }

    std::vector<std::string> Lines()
    {
        lines_.push_back("step      " + Quoted(notice_.Label()));
        for (const ObjectChange &change : notice_.Changes())
            AddChange(change);
        for (const StaleFrames &stale : notice_.Stale())
            lines_.push_back("stale     frames " + std::to_string(stale.first) + " to " +
                             std::to_string(stale.end) + " of " + NameOf(ObjectKind::Asset, stale.timeline));
        return std::move(lines_);
    }

    std::string Json() const
    {
        JsonWriter json;
        json.BeginObject().Member("step", notice_.Label()).Key("changes").BeginArray();
        for (const ObjectChange &change : notice_.Changes())
            WriteChange(json, change);
        json.EndArray().Key("stale").BeginArray();
        for (const StaleFrames &stale : notice_.Stale())
            json.BeginObject()
                .Member("id", stale.timeline)
                .Member("name", Known(stale.timeline) ? Known(stale.timeline)->name : "")
                .Member("first", stale.first)
                .Member("end", stale.end)
                .EndObject();
        return json.EndArray().EndObject().Text();
    }

private:
    const Standing *Known(const kytl::KyID &id) const
    {
        const Standing *is = after_.Find(id);
        return is ? is : before_.Find(id);
    }

    /// What is in no list of objects, such as a path point, has no name.
    std::string NameOf(ObjectKind kind, const kytl::KyID &id) const
    {
        const Standing *known = Known(id);
        return known ? known->Text() : KindName(kind);
    }

    void AddLine(const std::string &object, const std::string &what)
    {
        lines_.push_back("changed   " + object + ": " + what);
    }

    void AddChange(const ObjectChange &change)
    {
        std::vector<std::string> told;
        const Standing *was = before_.Find(change.id);
        const Standing *is = after_.Find(change.id);
        const std::string move = was && is && was->isInTime && is->isInTime ? MoveText(*was, *is) : "";
        const bool isTrack = change.kind == ObjectKind::Track;
        if (!move.empty())
            told.push_back(move);
        for (const std::string &aspect : AspectNames(change.aspects))
            if (!(aspect == "frames" && (isTrack || !move.empty())) &&
                !(aspect == "members" && !(change.added.empty() && change.removed.empty())) &&
                !(aspect == "properties" && !change.properties.empty()))
                told.push_back(aspect == "members" ? "order" : aspect);
        for (const PropertyChange &property : change.properties)
            told.push_back(property.name);
        const ObjectKind member =
            change.kind == ObjectKind::Mask ? ObjectKind::PathPoint : ObjectKind::HostObject;
        for (const kytl::KyID &added : change.added)
            told.push_back("+ " + NameOf(member, added));
        for (const kytl::KyID &removed : change.removed)
            told.push_back("- " + NameOf(member, removed));
        std::string text;
        for (const std::string &one : told)
            text += (text.empty() ? "" : ", ") + one;
        if (!text.empty())
            AddLine(NameOf(change.kind, change.id), text);
        if (isTrack && change.aspects.Has(Aspect::Frames))
            AddShifted(change.id);
    }

    /// What a ripple moved is not named object by object. Neighbours that moved alike make one line.
    void AddShifted(const kytl::KyID &track)
    {
        const Standing *first = nullptr;
        const Standing *firstWas = nullptr;
        std::size_t behind = 0;
        const auto end = [&] {
            if (first)
                AddLine(first->Text(),
                        MoveText(*firstWas, *first) +
                            (behind > 0 ? ", with " + Counted(behind, "object") + " behind it" : ""));
            first = nullptr;
        };
        for (const kytl::KyID &id : after_.ObjectsOnTrack(track)) {
            const Standing *was = before_.Find(id);
            const Standing *is = after_.Find(id);
            if (named_.contains(id) || !was || was->startFrame == is->startFrame) {
                end();
            } else if (first &&
                       is->startFrame - was->startFrame == first->startFrame - firstWas->startFrame) {
                ++behind;
            } else {
                end();
                first = is;
                firstWas = was;
                behind = 0;
            }
        }
        end();
    }

    static void WriteFrames(JsonWriter &json, const char *key, const Standing *standing)
    {
        if (standing && standing->isInTime)
            json.Key(key).BeginArray().Value(standing->startFrame).Value(standing->endFrame).EndArray();
    }

    static void WriteIDs(JsonWriter &json, const char *key, const std::vector<kytl::KyID> &ids)
    {
        if (ids.empty())
            return;
        json.Key(key).BeginArray();
        for (const kytl::KyID &id : ids)
            json.Value(id);
        json.EndArray();
    }

    void WriteChange(JsonWriter &json, const ObjectChange &change) const
    {
        json.BeginObject().Member("kind", KindName(change.kind)).Member("id", change.id);
        if (const Standing *known = Known(change.id))
            json.Member("name", known->name);
        json.Key("what").BeginArray();
        for (const std::string &aspect : AspectNames(change.aspects))
            json.Value(aspect);
        json.EndArray();
        if (!change.properties.empty()) {
            json.Key("properties").BeginArray();
            for (const PropertyChange &property : change.properties)
                json.Value(property.name);
            json.EndArray();
        }
        WriteIDs(json, "added", change.added);
        WriteIDs(json, "removed", change.removed);
        WriteFrames(json, "framesBefore", before_.Find(change.id));
        WriteFrames(json, "frames", after_.Find(change.id));
        json.EndObject();
    }

    const ChangeNotice &notice_;
    const Standings &before_;
    const Standings &after_;
    std::unordered_set<kytl::KyID> named_;
    std::vector<std::string> lines_;
};

} // namespace

std::vector<std::string> NoticeLines(const ChangeNotice &notice, const Standings &before,
                                     const Standings &after)
{
    return NoticeTeller(notice, before, after).Lines();
}

std::string NoticeJson(const ChangeNotice &notice, const Standings &before, const Standings &after)
{
    return NoticeTeller(notice, before, after).Json();
}

} // namespace marlet::tool
