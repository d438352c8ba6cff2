#pragma once

#include <marlet/animation/AtomicOwner.h>
#include <marlet/animation/KeyFrame.h>
#include <marlet/animation/SpatialCurve.h>
#include <marlet/animation/TemporalCurve.h>

#include <vector>

namespace marlet::project
{

/// A key frame with the curve tables of the piece that starts at it. The temporal table and what evaluation
/// reads of the key frame share a cache line.
struct alignas(64) KeyFrameNode {
    explicit KeyFrameNode(const KeyFrame &frame) : key(frame) {}

    mutable AtomicOwner<const TemporalTable> temporal;
    KeyFrame key;
    mutable AtomicOwner<const SpatialTable> spatial;
    bool isRemoved = false;
};

/// Memory for the nodes of one list, in blocks that grow with it. Who makes a node destroys it.
class KeyFrameNodePool
{
public:
    KeyFrameNodePool() = default;
    KeyFrameNodePool(const KeyFrameNodePool &) = delete;
    KeyFrameNodePool &operator=(const KeyFrameNodePool &) = delete;

    KeyFrameNode *Make(const KeyFrame &key);
    void Destroy(KeyFrameNode *node);

private:
    union Slot {
        Slot *nextFree;
        alignas(KeyFrameNode) std::byte node[sizeof(KeyFrameNode)];
    };

    void Grow();

    std::vector<std::unique_ptr<Slot[]>> blocks_;
    Slot *free_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace marlet::project
