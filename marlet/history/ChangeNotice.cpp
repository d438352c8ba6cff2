#include <marlet/history/ChangeNotice.h>

#include <utility>

namespace marlet::project
{

ChangeNotice::ChangeNotice(ChangeCause cause, WideString label, std::vector<ObjectChange> changes,
                           StaleSearch stale)
    : cause_(cause), label_(std::move(label)), changes_(std::move(changes)), search_(std::move(stale))
{
}

ChangeNotice::~ChangeNotice() = default;

const std::vector<StaleFrames> &ChangeNotice::Stale() const
{
    if (const StaleSearch search = std::exchange(search_, nullptr))
        stale_ = search(changes_);
    return stale_;
}

ChangeObserver::~ChangeObserver() = default;

} // namespace marlet::project
