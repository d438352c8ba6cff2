#include <marlet/layers/LayerChain.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/layers/AbstractLayerImpl.h>

#include <stdexcept>

namespace marlet::project
{

/// Finds one parent after another. Each search in a composition goes through all its layers, so that a long
/// chain whose links are not known yet would take the square of its length: after a few searches an index
/// takes their place.
class LayerChain::ParentFinder
{
public:
    explicit ParentFinder(const AssetList &assets) : assets_(assets) {}

    const AbstractLayer &Find(const AbstractLayer &layer)
    {
        const AbstractLayer_Impl &data = *layer.impl_;
        const AbstractLayer *parent = data.parentLayer.Find(data.parentLayerID);
        if (!parent)
            parent = Search(layer);
        if (!parent)
            throw std::logic_error(
                "Layer " + Describe(layer) +
                " has a parent that is not in its composition: " + data.parentLayerID.ToNarrowString());
        return *parent;
    }

private:
    using Index = std::unordered_map<kytl::KyID, std::shared_ptr<AbstractLayer>>;

    static constexpr int kSearches = 16;

    const AbstractLayer *Search(const AbstractLayer &layer)
    {
        if (searches_ < kSearches) {
            ++searches_;
            return layer.ParentLayer(assets_).get();
        }
        const AbstractLayer_Impl &data = *layer.impl_;
        const Index &index = IndexOf(LayerChain::Composition(layer, assets_));
        const auto found = index.find(data.parentLayerID);
        if (found == index.end())
            return nullptr;
        data.parentLayer.Remember(found->second);
        return found->second.get();
    }

    const Index &IndexOf(const CompositionAsset &composition)
    {
        const auto [entry, isNew] = indices_.try_emplace(&composition);
        if (isNew)
            for (const std::shared_ptr<AbstractLayer> &layer : composition.Layers())
                entry->second.try_emplace(layer->ID(), layer);
        return entry->second;
    }

    const AssetList &assets_;
    int searches_ = 0;
    std::unordered_map<const CompositionAsset *, Index> indices_;
};

LayerChain::LayerChain(const AbstractLayer &layer, int time, const AssetList &assets)
{
    ParentFinder finder(assets);
    Link link{&layer, time};
    Add(link);

    // Brent's search for a circle: a mark that is moved up each time the distance to it has doubled.
    const AbstractLayer *mark = &layer;
    std::size_t stepsToMark = 0;
    std::size_t stepsAllowed = 2;
    while (link.layer->HasParentLayer()) {
        const AbstractLayer &parent = finder.Find(*link.layer);
        if (&parent == mark)
            throw std::logic_error("The parents of layer " + Describe(layer) + " run in a circle");
        const double msPerFrame =
            AudioVideoSettings::MsPerFrame(Composition(*link.layer, assets).Settings().FrameRate());
        link = {&parent, ConvertTime(*link.layer, link.time, parent, msPerFrame)};
        Add(link);
        if (++stepsToMark == stepsAllowed) {
            mark = &parent;
            stepsToMark = 0;
            stepsAllowed *= 2;
        }
    }
}

void LayerChain::Add(const Link &link)
{
    if (size_ < near_.size())
        near_[size_] = link;
    else
        far_.push_back(link);
    ++size_;
}

const CompositionAsset &LayerChain::Composition(const AbstractLayer &layer, const AssetList &assets)
{
    const AbstractLayer_Impl &data = *layer.impl_;
    const CompositionAsset *composition = data.parentComposition.Find(data.parentCompositionID);
    return composition ? *composition : *layer.ParentComposition(assets);
}

int LayerChain::ConvertTime(const AbstractLayer &from, int time, const AbstractLayer &to, double msPerFrame)
{
    const auto frame = static_cast<float>(static_cast<double>(from.StartFrame()) + time / msPerFrame);
    return Truncate<int>(static_cast<double>(frame - static_cast<float>(to.StartFrame())) * msPerFrame);
}

NarrowString Describe(const AbstractLayer &layer)
{
    return "\"" + ToUtf8(layer.Name()) + "\" (" + layer.ID().ToNarrowString() + ")";
}

} // namespace marlet::project
