#include <marlet/animation/LateKeyFrames.h>

#include <algorithm>
#include <limits>

namespace marlet::project
{

namespace
{

/// The most that stand in a block: about as quick to shift as to search.
constexpr std::size_t kMost = 256;

} // namespace

LateKeyFrames::Place LateKeyFrames::From(int time) const
{
    const auto block =
        static_cast<std::size_t>(std::ranges::lower_bound(lastTimes_, time) - lastTimes_.begin());
    if (block == blocks_.size())
        return {block, 0};
    const Block &in = blocks_[block];
    const auto late = std::ranges::lower_bound(in, time, {}, &Late::time);
    return {block, static_cast<std::size_t>(late - in.begin())};
}

LateKeyFrames::Place LateKeyFrames::After(int time) const
{
    if (time == std::numeric_limits<int>::max())
        return {blocks_.size(), 0};
    return From(time + 1);
}

const LateKeyFrames::Late *LateKeyFrames::At(Place place) const
{
    return place.block == blocks_.size() ? nullptr : &blocks_[place.block][place.index];
}

void LateKeyFrames::Insert(KeyFrameNode *node, int time)
{
    if (blocks_.empty()) {
        Block first;
        first.reserve(kMost);
        lastTimes_.reserve(1);
        blocks_.push_back(std::move(first));
        lastTimes_.push_back(time);
    }
    Place place = After(time);
    if (place.block == blocks_.size())
        place = {blocks_.size() - 1, blocks_.back().size()};
    if (blocks_[place.block].size() == kMost) {
        Split(place.block);
        const std::size_t count = blocks_[place.block].size();
        if (place.index > count)
            place = {place.block + 1, place.index - count};
    }
    Block &block = blocks_[place.block];
    block.insert(block.begin() + static_cast<std::ptrdiff_t>(place.index), {time, node});
    lastTimes_[place.block] = block.back().time;
    ++count_;
}

/// Makes two of one, with nothing changed if memory runs out.
void LateKeyFrames::Split(std::size_t block)
{
    Block second;
    second.reserve(kMost);
    lastTimes_.reserve(lastTimes_.size() + 1);
    const auto behind = static_cast<std::ptrdiff_t>(block) + 1;
    Block &first = *std::prev(blocks_.insert(blocks_.begin() + behind, std::move(second)));
    const auto middle = first.begin() + kMost / 2;
    blocks_[block + 1].assign(middle, first.end());
    lastTimes_.insert(lastTimes_.begin() + behind, first.back().time);
    first.erase(middle, first.end());
    lastTimes_[block] = first.back().time;
}

KeyFrameNode *LateKeyFrames::LastBefore(int time) const
{
    const Place from = From(time);
    if (from.block < blocks_.size() && from.index > 0)
        return blocks_[from.block][from.index - 1].node;
    return from.block == 0 ? nullptr : blocks_[from.block - 1].back().node;
}

KeyFrameNode *LateKeyFrames::FirstAt(int time) const
{
    const Late *late = At(From(time));
    return late != nullptr && late->time == time ? late->node : nullptr;
}

KeyFrameNode *LateKeyFrames::FirstAfter(int time) const
{
    const Late *late = At(After(time));
    return late != nullptr ? late->node : nullptr;
}

void LateKeyFrames::Clear()
{
    *this = {};
}

} // namespace marlet::project
