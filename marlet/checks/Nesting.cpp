#include <marlet/checks/Nesting.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

namespace
{

/// A composition by its place among all of them.
struct Node {
    std::vector<std::size_t> shown;
    std::size_t order = 0; ///< of the visit, from 1 on
    std::size_t earliest = 0;
    bool isOpen = false;
};

/// Those whose walk has not come to its end, with the next of those that they show.
using Trail = std::vector<std::pair<std::size_t, std::size_t>>;

} // namespace

/// Tarjan's search for the parts of a graph whose nodes all reach one another, without recursion.
struct Nesting::Walk {
    std::vector<Node> nodes;
    std::vector<std::size_t> groups; ///< by nodes
    std::vector<std::size_t> open;
    std::size_t visits = 0;
    std::size_t groupCount = 0;

    void From(std::size_t start)
    {
        Trail trail;
        Enter(start, trail);
        while (!trail.empty()) {
            auto &[at, next] = trail.back();
            Node &node = nodes[at];
            if (next == node.shown.size()) {
                const std::size_t left = at;
                trail.pop_back();
                Leave(left);
                if (!trail.empty())
                    Lower(trail.back().first, nodes[left].earliest);
                continue;
            }
            const std::size_t shown = node.shown[next++];
            if (nodes[shown].order == 0)
                Enter(shown, trail);
            else if (nodes[shown].isOpen)
                Lower(at, nodes[shown].order);
        }
    }

private:
    void Enter(std::size_t at, Trail &trail)
    {
        nodes[at].order = nodes[at].earliest = ++visits;
        nodes[at].isOpen = true;
        open.push_back(at);
        trail.emplace_back(at, 0);
    }

    void Lower(std::size_t at, std::size_t order)
    {
        nodes[at].earliest = std::min(nodes[at].earliest, order);
    }

    void Leave(std::size_t at)
    {
        if (nodes[at].earliest != nodes[at].order)
            return;
        for (bool isLast = false; !isLast; open.pop_back()) {
            isLast = open.back() == at;
            nodes[open.back()].isOpen = false;
            groups[open.back()] = groupCount;
        }
        ++groupCount;
    }
};

Nesting::Nesting(const std::vector<std::shared_ptr<CompositionAsset>> &compositions,
                 const std::unordered_map<kytl::KyID, std::shared_ptr<AbstractAsset>> &assets)
{
    std::unordered_map<const AbstractAsset *, std::size_t> places;
    for (const auto &composition : compositions)
        places.emplace(composition.get(), places.size());
    Walk walk;
    walk.nodes.resize(compositions.size());
    walk.groups.resize(compositions.size());
    for (std::size_t i = 0; i < compositions.size(); ++i)
        for (const auto &layer : std::as_const(*compositions[i]).Layers()) {
            const auto *shows = dynamic_cast<const AssetLayer *>(layer.get());
            const auto asset = shows ? assets.find(shows->AssetID()) : assets.end();
            if (asset == assets.end())
                continue;
            if (const auto place = places.find(asset->second.get()); place != places.end())
                walk.nodes[i].shown.push_back(place->second);
        }
    for (std::size_t i = 0; i < compositions.size(); ++i)
        if (walk.nodes[i].order == 0)
            walk.From(i);
    for (std::size_t i = 0; i < compositions.size(); ++i)
        groups_.emplace(compositions[i].get(), walk.groups[i]);
}

bool Nesting::LeadsBack(const AbstractAsset *composition, const AbstractAsset *shown) const
{
    const auto from = groups_.find(composition);
    const auto to = groups_.find(shown);
    return from != groups_.end() && to != groups_.end() && from->second == to->second;
}

} // namespace marlet::project
