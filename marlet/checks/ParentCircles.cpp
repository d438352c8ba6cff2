#include <marlet/checks/ParentCircles.h>

#include <marlet/layers/AbstractLayer.h>

#include <vector>

namespace marlet::project
{

ParentCircles::ParentCircles(const CompositionAsset::LayerList &layers)
{
    // Of several layers with one ID the first is the parent that is found.
    std::unordered_map<kytl::KyID, kytl::KyID> parents;
    for (const auto &layer : layers)
        if (layer && !layer->ID().IsNull())
            parents.try_emplace(layer->ID(), layer->ParentLayerID());

    std::unordered_map<kytl::KyID, kytl::KyID> visited; ///< by the start of the walk that came there first
    std::vector<kytl::KyID> way;
    for (const auto &link : parents) {
        const kytl::KyID start = link.first;
        way.clear();
        kytl::KyID at = start;
        for (auto next = parents.find(at); next != parents.end() && visited.try_emplace(at, start).second;
             next = parents.find(at)) {
            way.push_back(at);
            at = next->second;
        }
        const auto met = visited.find(at);
        if (circular_.contains(at) || (met != visited.end() && met->second == start))
            circular_.insert(way.begin(), way.end());
    }
}

} // namespace marlet::project
