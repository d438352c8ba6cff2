#include <marlet/history/Step.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

template <class Iterator> void ExchangeAll(Iterator begin, Iterator end)
{
    Iterator next = begin;
    try {
        for (; next != end; ++next)
            (*next)->Exchange();
    } catch (...) {
        while (next != begin)
            (*--next)->Exchange();
        throw;
    }
}

} // namespace

bool Step::Add(std::unique_ptr<EditedPart> part)
{
    if (part->At().object != nullptr && !places_.insert(part->At()).second)
        return false;
    parts_.push_back(std::move(part));
    return true;
}

bool Step::Meets(const Step &other) const
{
    const auto isKnown = [this](const EditedPart::Place &place) { return places_.contains(place); };
    return places_.empty() || other.places_.empty() || std::ranges::any_of(other.places_, isKnown);
}

std::vector<std::unique_ptr<EditedPart>> Step::TakeParts()
{
    places_.clear();
    return std::exchange(parts_, {});
}

bool Step::IsChange() const
{
    return std::ranges::any_of(parts_, [](const std::unique_ptr<EditedPart> &part) {
        ChangeList changes;
        part->Describe(changes);
        return !changes.IsEmpty();
    });
}

void Step::Describe(ChangeList &changes) const
{
    for (const std::unique_ptr<EditedPart> &part : parts_)
        part->Describe(changes);
}

void Step::Undo()
{
    ExchangeAll(parts_.rbegin(), parts_.rend());
}

void Step::Redo()
{
    ExchangeAll(parts_.begin(), parts_.end());
}

std::size_t Step::Size() const
{
    std::size_t size = sizeof *this;
    for (const std::unique_ptr<EditedPart> &part : parts_)
        size += part->Size();
    return size;
}

} // namespace marlet::project
