#pragma once

#include <marlet/layers/AbstractLayer.h>

#include <array>
#include <cstddef>
#include <vector>

namespace marlet::project
{

/// A layer and its parents up to the root, each at the same moment in its own relative time.
///
/// Chains come from files: they may be longer than the stack is deep, dangle, or run in a circle. So they are
/// collected in a loop, and what is made of them is made in loops over this. A chain of usual depth costs no
/// allocation.
class LayerChain
{
public:
    struct Link {
        const AbstractLayer *layer;
        int time;
    };

    /// @throws std::runtime_error if a composition is missing
    /// @throws std::logic_error if a parent is missing or the parents run in a circle
    LayerChain(const AbstractLayer &layer, int time, const AssetList &assets);

    std::size_t Size() const { return size_; }
    /// The layer itself at 0, its root last.
    const Link &operator[](std::size_t index) const
    {
        return index < near_.size() ? near_[index] : far_[index - near_.size()];
    }

    /// AbstractLayer::ParentComposition without a copy of the shared pointer.
    static const CompositionAsset &Composition(const AbstractLayer &layer, const AssetList &assets);

    /// A layer's relative time as that of another layer, both in a composition of that frame duration.
    static int ConvertTime(const AbstractLayer &from, int time, const AbstractLayer &to, double msPerFrame);

private:
    /// AbstractLayer::ParentLayer without a copy of the shared pointer.
    /// @throws std::logic_error if the layer's composition has no such layer
    static const AbstractLayer &Parent(const AbstractLayer &layer, const AssetList &assets);
    void Add(const Link &link);

    std::size_t size_ = 0;
    std::array<Link, 16> near_;
    std::vector<Link> far_;
};

/// The layer's name and ID, for messages.
NarrowString Describe(const AbstractLayer &layer);

} // namespace marlet::project
