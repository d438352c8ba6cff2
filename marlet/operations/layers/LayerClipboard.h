#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <optional>
#include <vector>

namespace marlet::project
{

class Abstract3DEffectFactory;
class AbstractLayer;
class CompositionAsset;
class Project;
struct CopiedLayers_Impl;

/// Copies of layers of one composition, with their effects, masks, trackers and private data. They stay as
/// they are whatever becomes of the layers. What they show stays in its project, which they keep alive: it is
/// taken from there when they are pasted.
class MARLET_EXPORT CopiedLayers
{
public:
    CopiedLayers(const CopiedLayers &) = delete;
    CopiedLayers &operator=(const CopiedLayers &) = delete;
    ~CopiedLayers();

    unsigned int Count() const;

private:
    friend std::shared_ptr<CopiedLayers>
    CopyLayers(const std::shared_ptr<Project> &project,
               const std::vector<std::shared_ptr<AbstractLayer>> &layers);
    friend struct LayerPaste;

    explicit CopiedLayers(std::unique_ptr<CopiedLayers_Impl> impl);

    std::unique_ptr<CopiedLayers_Impl> impl_;
};

/// Changes nothing. Effects whose plug-in is gone stay behind.
/// @throws std::invalid_argument for a null pointer, OperationException for no layers, and for such as are
/// not in one composition of the project
MARLET_EXPORT std::shared_ptr<CopiedLayers>
CopyLayers(const std::shared_ptr<Project> &project,
           const std::vector<std::shared_ptr<AbstractLayer>> &layers);

struct PasteOptions {
    /// What the copies refer to beside one another: layers that the composition has, or nothing.
    enum class Outside { Keep, Clear };
    /// What they show, in another project: what is alike there (the same ID, the same file, the same solid)
    /// or else a copy, or a copy in any case. Pasting again finds the former copies.
    enum class Assets { Match, Copy };

    /// Where the first of them starts, a frame of the composition; not set for the frames of the source.
    std::optional<int> startFrame = {};
    unsigned int position = 0; ///< in the stack, counted from the top
    Outside outside = Outside::Keep;
    Assets assets = Assets::Match;
    /// Makes 3D effects anew from what they save, with textures of the project that they come into. Without
    /// one they are the clones that the host's effects give of themselves.
    const Abstract3DEffectFactory *effectFactory = nullptr;
};

/// Puts new layers into a composition, as one Edit, and returns them in stacking order. Between projects the
/// assets come along, into the root folder, with all that compositions show; media are opened there, and
/// effects are of the plug-ins there.
/// @throws std::invalid_argument for a null pointer; OperationException where a composition would show
/// itself, an asset is in its project no more, or a plug-in is not there. Nothing is changed then.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractLayer>>
PasteLayers(const std::shared_ptr<Project> &project, const std::shared_ptr<CompositionAsset> &composition,
            CopiedLayers &copied, const PasteOptions &options = {});

} // namespace marlet::project
