#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/project/CompositionAsset.h>

#include <unordered_map>
#include <unordered_set>

namespace marlet::project
{

/// The layers of a composition whose parents run in a circle, or lead into one. Found in one walk over all
/// links.
class ParentCircles
{
public:
    explicit ParentCircles(const CompositionAsset::LayerList &layers);

    bool Holds(const kytl::KyID &layer) const { return circular_.contains(layer); }

private:
    std::unordered_set<kytl::KyID> circular_;
};

} // namespace marlet::project
