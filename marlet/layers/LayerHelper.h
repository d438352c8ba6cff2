#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/layers/ObjectPropertyList.h>

#include <memory>
#include <unordered_map>

namespace marlet::project
{

class EffectInstance;
class Mask;
class XmlCursor;
class XmlWriter;

/// What the layer classes with effects and masks have in common. Internal.
class LayerHelper
{
public:
    using Effects = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
    using Masks = kytl::KyList<std::shared_ptr<Mask>, std::vector>;

    static void SerializeMasks(XmlWriter &writer, const Masks &masks);
    /// Empties the list; an element without "Masks" has none.
    static void DeserializeMasks(const XmlCursor &parent, Masks &masks);

    /// Copies for a clone: effects that the clone in its composition holds, and masks on it. Effects whose
    /// plug-in is gone cannot be copied and are left out.
    static Effects CopyEffects(const Effects &effects, const kytl::KyID &layerID,
                               const kytl::KyID &compositionID);
    static Masks CopyMasks(const Masks &masks, const kytl::KyID &layerID);

    /// Gives a clone copies of what its source owns. If the composition's ID is null, the clone is in that of
    /// its source.
    template <class Layer>
    static void CopyEffectsAndMasks(const Layer &source, Layer &clone, const kytl::KyID &compositionID)
    {
        clone.Effects() = CopyEffects(source.Effects(), clone.ID(),
                                      compositionID.IsNull() ? source.ParentCompositionID() : compositionID);
        clone.Masks() = CopyMasks(source.Masks(), clone.ID());
    }

    static std::vector<ObjectPropertyList> LayerReferencePropertyNames(const Effects &effects);
    static bool IsLayerReferenced(const Effects &effects, const kytl::KyID &layerID);
    static void ClearInvalidLayerReferences(const Effects &effects,
                                            const std::unordered_map<NarrowString, bool> &validIDs);
    static void ChangeLayerReferences(const Effects &effects,
                                      const std::unordered_map<NarrowString, NarrowString> &changes);
};

} // namespace marlet::project
