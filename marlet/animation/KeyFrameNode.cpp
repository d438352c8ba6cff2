#include <marlet/animation/KeyFrameNode.h>

#include <algorithm>

namespace marlet::project
{

KeyFrameNode *KeyFrameNodePool::Make(const KeyFrame &key, const std::uint32_t &epoch)
{
    if (free_ == nullptr)
        Grow();
    Slot *slot = free_;
    Slot *rest = slot->nextFree;
    KeyFrameNode *node = new (slot->node) KeyFrameNode(key, epoch);
    free_ = rest;
    return node;
}

void KeyFrameNodePool::Destroy(KeyFrameNode *node)
{
    node->~KeyFrameNode();
    Slot *slot = reinterpret_cast<Slot *>(node);
    slot->nextFree = free_;
    free_ = slot;
}

/// Doubles the room, up to a block that wastes little of a long list.
void KeyFrameNodePool::Grow()
{
    const std::size_t count = std::clamp<std::size_t>(size_, 1, 256);
    std::unique_ptr<Slot[]> block(new Slot[count]);
    for (std::size_t i = count; i > 0; --i) {
        block[i - 1].nextFree = free_;
        free_ = &block[i - 1];
    }
    blocks_.push_back(std::move(block));
    size_ += count;
}

} // namespace marlet::project
