#include "LayerContent.h"

#include "output/Output.h"
#include "plugins/Ribbon.h"
#include "plugins/ToolPlugin.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/tracking/Tracker.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

/// Collects the tokens of a text into runs.
class TextReader
{
public:
    void Read(const TextLayer::Token &token)
    {
        ++content_.tokens;
        if (token.type == TextLayer::Token::kParagraph) {
            ++content_.paragraphs;
            content_.runs.push_back({true, static_cast<int>(token.justification), {}, 0});
            return;
        }
        const std::size_t format = token.format ? PlaceOf(token.format) : 0;
        if (content_.runs.empty() || content_.runs.back().isParagraph ||
            content_.runs.back().format != format)
            content_.runs.push_back({false, 0, {}, format});
        content_.runs.back().text += token.character;
    }

    TextContent Take() { return std::move(content_); }

private:
    std::size_t PlaceOf(const std::shared_ptr<TextLayer::Format> &format)
    {
        const auto [at, isNew] = places_.try_emplace(format.get(), places_.size() + 1);
        if (isNew)
            content_.formats.push_back(format);
        return at->second;
    }

    TextContent content_;
    std::unordered_map<const TextLayer::Format *, std::size_t> places_;
};

/// A layer picker holds an ID, unless a file brought another type.
void AddEffectReferences(const EffectInstance &effect, std::vector<LayerReference> &references)
{
    for (const NarrowString &property : effect.LayerPickerProperties())
        if (const auto *id = boost::get<kytl::KyID>(&effect.Properties().StaticValue(property.c_str())))
            references.push_back({LayerReference::Holder::Effect, effect.ID(), effect.Name(), property, *id});
}

} // namespace

const EffectList &EffectsOf(const AbstractLayer &layer)
{
    static const EffectList none;
    if (const auto *asset = dynamic_cast<const AssetLayer *>(&layer))
        return asset->Effects();
    if (const auto *grade = dynamic_cast<const GradeLayer *>(&layer))
        return grade->Effects();
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        return text->Effects();
    return none;
}

const MaskList &MasksOf(const AbstractLayer &layer)
{
    static const MaskList none;
    if (const auto *asset = dynamic_cast<const AssetLayer *>(&layer))
        return asset->Masks();
    if (const auto *grade = dynamic_cast<const GradeLayer *>(&layer))
        return grade->Masks();
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        return text->Masks();
    return none;
}

const TrackerList &TrackersOf(const AbstractLayer &layer)
{
    static const TrackerList none;
    const auto *asset = dynamic_cast<const AssetLayer *>(&layer);
    return asset ? asset->Trackers() : none;
}

std::vector<std::string> HiddenControls(const EffectInstance &effect)
{
    std::vector<std::string> hidden;
    for (const auto &[property, atFirst] : EffectsHelper::CreateUIState(effect.Plugin()))
        if (!effect.PropertyUIState(property.c_str()).visible)
            hidden.push_back(property);
    std::sort(hidden.begin(), hidden.end());
    return hidden;
}

std::size_t PrivateByteCount(const EffectInstance &effect)
{
    const auto owner = std::dynamic_pointer_cast<PrivateDataOwner>(effect.Plugin());
    return owner ? owner->PrivateBytes(effect).size() : 0;
}

TextContent ContentOf(const TextLayer &layer)
{
    TextReader reader;
    for (const TextLayer::Token *token = layer.Text().first.get(); token; token = token->next.get())
        reader.Read(*token);
    return reader.Take();
}

std::vector<LayerReference> LayerReferences(const AbstractLayer &layer)
{
    std::vector<LayerReference> references;
    references.push_back({LayerReference::Holder::ParentLink, {}, {}, {}, layer.ParentLayerID()});
    for (const auto &tracker : TrackersOf(layer))
        references.push_back({LayerReference::Holder::Tracker,
                              tracker->ID(),
                              tracker->Name(),
                              {},
                              tracker->DestinationLayerID()});
    for (const auto &effect : EffectsOf(layer))
        AddEffectReferences(*effect, references);
    if (const auto *layer3D = dynamic_cast<const Effect3DLayer *>(&layer))
        if (const auto ribbon = std::dynamic_pointer_cast<const Ribbon>(layer3D->Effect()))
            references.push_back({LayerReference::Holder::Effect3D, ribbon->ID(), u"Ribbon",
                                  Ribbon::kFollowed, ribbon->FollowedLayer()});
    references.erase(std::remove_if(references.begin(), references.end(),
                                    [](const LayerReference &at) { return at.target.IsNull(); }),
                     references.end());
    return references;
}

std::string HolderText(const LayerReference &reference)
{
    if (reference.holder == LayerReference::Holder::ParentLink)
        return "parent layer";
    if (reference.holder == LayerReference::Holder::Tracker)
        return "tracker " + Quoted(reference.name) + ", destination";
    return (reference.holder == LayerReference::Holder::Effect ? "effect " : "3D effect ") +
           Quoted(reference.name) + ", property " + reference.property;
}

} // namespace marlet::tool
