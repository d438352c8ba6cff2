#include <marlet/history/AnnouncementCheck.h>

#include <marlet/history/Step.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

namespace
{

NarrowString LineAt(const WideString &text, std::size_t place)
{
    const std::size_t begin = place == 0 ? 0 : text.rfind(u'\n', place - 1) + 1;
    const std::size_t end = text.find(u'\n', place);
    const WideString line = text.substr(begin, end == WideString::npos ? end : end - begin);
    const std::size_t indentation = std::min(line.find_first_not_of(u" \t"), line.size());
    return ToUtf8(line.substr(indentation));
}

} // namespace

AnnouncementCheck::AnnouncementCheck(const Project &project) : before_(project.Serialize())
{
}

void AnnouncementCheck::Check(const Project &project, Step &step, const WideString &label) const
{
    step.Undo();
    const WideString undone = project.Serialize();
    step.Redo();
    if (undone == before_)
        return;
    const auto difference = std::ranges::mismatch(before_, undone);
    const auto place = static_cast<std::size_t>(difference.in1 - before_.begin());
    throw std::logic_error("The edit \"" + ToUtf8(label) + "\" changed what it had not announced: " +
                           LineAt(before_, place) + " became " + LineAt(undone, place));
}

} // namespace marlet::project
