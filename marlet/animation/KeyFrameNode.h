#pragma once

#include <marlet/animation/AtomicOwner.h>
#include <marlet/animation/KeyFrame.h>
#include <marlet/animation/SpatialCurve.h>
#include <marlet/animation/TemporalCurve.h>

#include <vector>

namespace marlet::project
{

/// A key frame with the path of the piece that starts at it. What evaluation reads of the key frame stands in
/// one cache line.
struct alignas(64) KeyFrameNode {
    KeyFrameNode(const KeyFrame &frame, const std::uint32_t &epoch) : key(frame) { key.StandIn(&epoch); }

    bool IsInList() const { return key.StandsInList(); }

    KeyFrame key;
    mutable AtomicOwner<const SpatialTable> spatial;
};

static_assert(sizeof(KeyFrameNode) == 128, "two cache lines");

/// A key frame's place in its list, with the time curve of the piece that starts at it: here and not in the
/// node, so that memory brings both at once. The list deletes the table.
struct KeyFramePlace {
    KeyFrameNode *node = nullptr;
    mutable AtomicPointer<const TemporalTable> temporal = {};
};

/// Memory for the nodes of one list, in blocks that grow with it. Who makes a node destroys it.
class KeyFrameNodePool
{
public:
    KeyFrameNodePool() = default;
    KeyFrameNodePool(const KeyFrameNodePool &) = delete;
    KeyFrameNodePool &operator=(const KeyFrameNodePool &) = delete;

    /// A node with a copy of the key frame, which stands in the list of that epoch.
    KeyFrameNode *Make(const KeyFrame &key, const std::uint32_t &epoch);
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
