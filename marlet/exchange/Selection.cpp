#include <marlet/exchange/Selection.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace marlet::project
{

namespace
{

/// Of what has an ID and a name. The kind stands in the words of the refusal.
template <class Pointer>
Pointer Select(const std::vector<Pointer> &all, const WideString &wanted, const std::string &kind,
               const std::string &where)
{
    std::vector<Pointer> named;
    for (const Pointer &one : all) {
        if (one->ID().ToWideString() == wanted)
            return one;
        if (wanted.empty() || one->Name() == wanted)
            named.push_back(one);
    }
    if (named.size() == 1)
        return named.front();
    const std::string what = kind + (wanted.empty() ? "" : " " + Quoted(wanted));
    if (named.empty())
        throw OperationException("There is no " + what + " in " + where);
    throw OperationException("There is more than one " + what + " in " + where + ": one must be named");
}

AnimatedProperty PropertyOfEffect(const std::shared_ptr<AbstractLayer> &layer, const NarrowString &path,
                                  std::size_t slash)
{
    std::vector<std::shared_ptr<EffectInstance>> effects;
    if (const auto *shown = dynamic_cast<const AssetLayer *>(layer.get()))
        effects.assign(shown->Effects().begin(), shown->Effects().end());
    std::erase(effects, nullptr);
    const auto effect =
        Select(effects, FromUtf8(path.substr(0, slash)), "effect", "layer " + Quoted(layer->Name()));
    const NarrowString name = path.substr(slash + 1);
    if (!effect->Properties().HasProperty(name.c_str()))
        throw OperationException("There is no property \"" + name + "\" of effect " + Quoted(effect->Name()));
    return {std::shared_ptr<PluginInstance>(effect), name};
}

} // namespace

std::shared_ptr<CompositionAsset> SelectedComposition(const Project &project, const ExchangeOptions &options)
{
    std::vector<std::shared_ptr<CompositionAsset>> compositions;
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        compositions.push_back(std::static_pointer_cast<CompositionAsset>(asset));
    return Select(compositions, options.composition, "composition", "the project");
}

std::shared_ptr<AbstractLayer> SelectedLayer(const Project &project, const ExchangeOptions &options)
{
    const auto composition = SelectedComposition(project, options);
    std::vector<std::shared_ptr<AbstractLayer>> layers(composition->Layers().begin(),
                                                       composition->Layers().end());
    std::erase(layers, nullptr);
    return Select(layers, options.layer, "layer", "composition " + Quoted(composition->Name()));
}

AnimatedProperty SelectedProperty(const Project &project, const ExchangeOptions &options)
{
    const auto layer = SelectedLayer(project, options);
    if (const std::size_t slash = options.property.rfind('/'); slash != NarrowString::npos)
        return PropertyOfEffect(layer, options.property, slash);
    const PropertyManager &properties = layer->Animation();
    std::vector<NarrowString> names;
    for (const NarrowString &name : properties.PropertyNames())
        if (options.property.empty() ? !properties.KeyFrames(name.c_str()).IsEmpty()
                                     : name == options.property)
            names.push_back(name);
    const std::string where = " of layer " + Quoted(layer->Name());
    if (names.empty())
        throw OperationException(options.property.empty()
                                     ? "There is no property with key frames" + where
                                     : "There is no property \"" + options.property + "\"" + where);
    if (names.size() > 1)
        throw OperationException("There is more than one property with key frames" + where +
                                 ": one must be named");
    return {layer, names.front()};
}

} // namespace marlet::project
