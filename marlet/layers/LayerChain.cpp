#include <marlet/layers/LayerChain.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/layers/AbstractLayerImpl.h>

#include <stdexcept>

namespace marlet::project
{

LayerChain::LayerChain(const AbstractLayer &layer, int time, const AssetList &assets)
{
    Link link{&layer, time};
    Add(link);

    // Brent's search for a circle: a mark that is moved up each time the distance to it has doubled.
    const AbstractLayer *mark = &layer;
    std::size_t stepsToMark = 0;
    std::size_t stepsAllowed = 2;
    while (link.layer->HasParentLayer()) {
        const AbstractLayer &parent = Parent(*link.layer, assets);
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

const AbstractLayer &LayerChain::Parent(const AbstractLayer &layer, const AssetList &assets)
{
    const AbstractLayer_Impl &data = *layer.impl_;
    if (const AbstractLayer *parent = data.parentLayer.Find(data.parentLayerID))
        return *parent;
    // The composition keeps what it finds.
    if (const auto parent = layer.ParentLayer(assets))
        return *parent;
    throw std::logic_error("Layer " + Describe(layer) + " has a parent that is not in its composition: " +
                           data.parentLayerID.ToNarrowString());
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
