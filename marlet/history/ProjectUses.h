#pragma once

#include <marlet/foundation/KyID.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class AbstractLayer;
class CompositionAsset;
class Project;

/// Who shows, holds and refers to whom in a project, gathered in one walk.
class ProjectUses
{
public:
    struct LayerUse {
        std::shared_ptr<AbstractLayer> layer;
        std::shared_ptr<CompositionAsset> composition;
    };

    struct Frames {
        int first = 0;
        int end = 0;
    };

    using IDs = std::vector<kytl::KyID>;
    using CompositionsByID = std::unordered_map<kytl::KyID, std::shared_ptr<CompositionAsset>>;

    explicit ProjectUses(const Project &project);

    const CompositionsByID &Compositions() const { return compositions_; }
    /// The null ID if there is none.
    const kytl::KyID &Sequence() const { return sequence_; }
    /// All frames of a composition, those of the sequence as far as its objects reach at least, and none of
    /// anything else.
    Frames FramesOf(const kytl::KyID &timeline) const;
    /// Null if it is in no composition.
    const LayerUse *Layer(const kytl::KyID &id) const;
    /// The layer that holds a mask, a point of one, or an effect, or null.
    const kytl::KyID *OwningLayer(const kytl::KyID &id) const;
    /// The objects of the sequence that hold an effect or a transition.
    const IDs &OwningObjects(const kytl::KyID &id) const { return At(owningObjects_, id); }
    /// The layers of its composition that have a layer as their parent, or refer to it in what they own. On a
    /// camera or a light everything in its composition depends; that stands for itself there.
    const IDs &Dependents(const kytl::KyID &layer) const { return At(dependents_, layer); }
    const IDs &LayersOf(const kytl::KyID &asset) const { return At(layersOf_, asset); }
    const IDs &ObjectsOf(const kytl::KyID &asset) const { return At(objectsOf_, asset); }

private:
    using Table = std::unordered_map<kytl::KyID, IDs>;

    static const IDs &At(const Table &table, const kytl::KyID &id);
    void Add(const std::shared_ptr<CompositionAsset> &composition);
    void Add(const std::shared_ptr<AbstractLayer> &layer);
    template <class Effects> void AddEffects(const Effects &effects, const kytl::KyID &layer);
    template <class Masks> void AddMasks(const Masks &masks, const kytl::KyID &layer);
    void AddSequence(const Project &project);

    CompositionsByID compositions_;
    std::unordered_map<kytl::KyID, LayerUse> layers_;
    std::unordered_map<kytl::KyID, kytl::KyID> owningLayer_;
    Table owningObjects_;
    Table dependents_;
    Table layersOf_;
    Table objectsOf_;
    kytl::KyID sequence_;
    Frames sequenceFrames_;
};

} // namespace marlet::project
