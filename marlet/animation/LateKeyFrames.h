#pragma once

#include <marlet/animation/KeyFrameNode.h>

#include <vector>

namespace marlet::project
{

/// Nodes that come in any order and stand in that of time, those of one time in the order of coming. They are
/// divided into blocks, so that one more shifts few of them.
class LateKeyFrames
{
public:
    std::size_t Count() const { return count_; }

    void Insert(KeyFrameNode *node, int time);
    /// The last one before a time, the first one at it and the first one after it, or null.
    KeyFrameNode *LastBefore(int time) const;
    KeyFrameNode *FirstAt(int time) const;
    KeyFrameNode *FirstAfter(int time) const;

    template <class Visit> void ForEachReverse(Visit &&visit) const
    {
        for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block)
            for (auto late = block->rbegin(); late != block->rend(); ++late)
                visit(late->node, late->time);
    }

    void Clear();

private:
    struct Late {
        int time;
        KeyFrameNode *node;
    };
    using Block = std::vector<Late>;

    /// Where one stands. Behind the last one there is no block.
    struct Place {
        std::size_t block;
        std::size_t index;
    };

    Place From(int time) const;
    Place After(int time) const;
    const Late *At(Place place) const;
    void Split(std::size_t block);

    std::vector<Block> blocks_;
    /// The time of the last one of each block.
    std::vector<int> lastTimes_;
    std::size_t count_ = 0;
};

} // namespace marlet::project
