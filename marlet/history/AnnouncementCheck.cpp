#include <marlet/history/AnnouncementCheck.h>

#include <marlet/history/Step.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace marlet::project
{

namespace
{

/// In characters: what some thousand layers take, and is written in a tenth of a second.
constexpr std::size_t kLongest = std::size_t{16} << 20;

/// Takes a text line by line, without the indentation, and passes over what changes without an edit: what
/// only panels show, what layers and objects learn of their assets when they are asked, and lists of
/// instances, which forget what dies with a step that a history lets go of.
class Lines
{
public:
    Lines(std::u16string_view text, bool all) : rest_(text), all_(all) {}

    /// Empty at the end.
    std::u16string_view Next()
    {
        std::u16string_view line = NextOfAll();
        while (!all_ && IsFree(line))
            line = NextOfAll();
        return line;
    }

private:
    std::u16string_view NextOfAll()
    {
        std::u16string_view line = rest_.substr(0, rest_.find(u'\n'));
        rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
        line.remove_prefix(std::min(line.find_first_not_of(u' '), line.size()));
        return line.empty() && !rest_.empty() ? std::u16string_view(u" ") : line;
    }

    /// Both kinds of panel state are elements with others in them, in which these do not stand again.
    bool IsFree(std::u16string_view line)
    {
        static constexpr std::u16string_view values[] = {u"<CTI>",
                                                         u"<InPoint>",
                                                         u"<OutPoint>",
                                                         u"<TimelineZoom>",
                                                         u"<TimelineTimeFormat>",
                                                         u"<TimelineSnapMode>",
                                                         u"<SplitterPosition>",
                                                         u"<PreviewSize>",
                                                         u"<PreviewMode>",
                                                         u"<IsExpanded>",
                                                         u"<AssetHasAudio>",
                                                         u"<AssetHasVideo>",
                                                         u"<AssetType>",
                                                         u"<Instances",
                                                         u"</Instances>",
                                                         u"<Instance ID="};
        static constexpr std::pair<std::u16string_view, std::u16string_view> states[] = {
            {u"<ViewerState ", u"</ViewerState>"}, {u"<UIState>", u"</UIState>"}};
        if (!end_.empty()) {
            if (line == end_ || line.empty())
                end_ = {};
            return !line.empty();
        }
        for (const auto &[begin, end] : states)
            if (line.starts_with(begin) && !line.ends_with(u"/>"))
                end_ = end;
        return !end_.empty() || std::ranges::any_of(values, [line](std::u16string_view value) {
            return line.starts_with(value);
        });
    }

    std::u16string_view rest_;
    std::u16string_view end_;
    bool all_;
};

/// The first line that differs in two texts, and what it became, or nothing.
std::optional<NarrowString> Difference(const WideString &before, const WideString &after, bool all)
{
    if (before == after)
        return std::nullopt;
    Lines former(before, all);
    Lines latter(after, all);
    for (;;) {
        const std::u16string_view was = former.Next();
        const std::u16string_view is = latter.Next();
        if (was != is)
            return ToUtf8(WideString(was)) + " became " + ToUtf8(WideString(is));
        if (was.empty())
            return std::nullopt;
    }
}

} // namespace

void AnnouncementCheck::Know(const Project &project)
{
    if (isTooLong_)
        return;
    known_ = project.Serialize();
    isTooLong_ = known_->size() > kLongest;
    if (isTooLong_)
        known_.reset();
}

void AnnouncementCheck::RequireKnown(const Project &project)
{
    const std::optional<WideString> before = std::move(known_);
    Know(project);
    if (!before || !known_)
        return;
    if (const auto difference = Difference(*before, *known_, false))
        throw std::logic_error("The project was changed outside of an edit: " + *difference);
}

void AnnouncementCheck::Check(const Project &project, Step &step, const WideString &label)
{
    if (!known_)
        return;
    WideString after = project.Serialize();
    step.Undo();
    WideString undone = project.Serialize();
    step.Redo();
    const auto difference = Difference(*known_, undone, true);
    known_ = std::move(difference ? undone : after);
    if (difference)
        throw std::logic_error("The edit \"" + ToUtf8(label) +
                               "\" changed what it had not announced: " + *difference);
}

} // namespace marlet::project
