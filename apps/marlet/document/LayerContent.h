#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/layers/TextLayer.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace marlet::project
{
class EffectInstance;
class Mask;
class Tracker;
} // namespace marlet::project

namespace marlet::tool
{

using EffectList = kytl::KyList<std::shared_ptr<project::EffectInstance>, std::vector>;
using MaskList = kytl::KyList<std::shared_ptr<project::Mask>, std::vector>;
using TrackerList = kytl::KyList<std::shared_ptr<project::Tracker>, std::vector>;

// Empty for classes of layers that have none.

const EffectList &EffectsOf(const project::AbstractLayer &layer);
const MaskList &MasksOf(const project::AbstractLayer &layer);
const TrackerList &TrackersOf(const project::AbstractLayer &layer);

/// The controls of an effect's panel that are out of sight, by their properties, in order.
std::vector<std::string> HiddenControls(const project::EffectInstance &effect);

/// How many bytes beside its properties an effect of the tool's plug-ins holds.
std::size_t PrivateByteCount(const project::EffectInstance &effect);

/// A stretch of a text in one format, or the end of a paragraph.
struct TextRun {
    bool isParagraph = false;
    int justification = 0;    ///< of a paragraph
    project::WideString text; ///< of a stretch
    std::size_t format = 0;   ///< of a stretch: its place among the formats, counted from 1; 0 for none
};

/// The text of a layer, by runs in place of tokens: a long text has few.
struct TextContent {
    std::vector<std::shared_ptr<project::TextLayer::Format>> formats; ///< in the order of their first use
    std::vector<TextRun> runs;
    std::size_t tokens = 0;
    std::size_t paragraphs = 0; ///< breaks
};

TextContent ContentOf(const project::TextLayer &layer);

/// Where a layer names another one.
struct LayerReference {
    enum class Holder { ParentLink, Tracker, Effect, Effect3D };

    Holder holder;
    kytl::KyID object;              ///< the tracker or effect
    project::WideString name;       ///< of the tracker or effect
    project::NarrowString property; ///< of the effect
    kytl::KyID target;
};

/// Without those that are null.
std::vector<LayerReference> LayerReferences(const project::AbstractLayer &layer);

/// "parent layer", "effect "Shift", property map"
std::string HolderText(const LayerReference &reference);

} // namespace marlet::tool
