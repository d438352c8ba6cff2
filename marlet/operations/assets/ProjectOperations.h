#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractAssetInstance;
class AbstractLayer;
class AssetLayer;
class BinFolder;
class CompositionAsset;
class Project;

// What comes into a project, moves in it and leaves it, as one Edit each. Assets, their folders and their
// lists of instances stay in step. A folder that is not given is the root. What cannot be done is an
// OperationException, and nothing is changed. Null pointers are std::invalid_argument, but for folders.
// Belongs to the thread that edits the project.

/// The asset goes to the end of the project's list and of the folder. What a composition shows must be in the
/// project.
MARLET_EXPORT void AddAsset(const std::shared_ptr<Project> &project,
                            const std::shared_ptr<AbstractAsset> &asset,
                            const std::shared_ptr<BinFolder> &folder = {});

enum class UsesOfRemoved {
    Refuse, ///< an asset that is used stays; the refusal names the uses
    Remove  ///< what shows it goes, as by RemoveLayers and RemoveObject, and leaves gaps
};
MARLET_EXPORT void RemoveAsset(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<AbstractAsset> &asset, UsesOfRemoved uses);

/// All that shows the asset shows another one of the project. Frames, names, effects and placement stay, so
/// that one that lacks these frames is refused, and for objects of the sequence one without picture or sound.
MARLET_EXPORT void ReplaceAsset(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractAsset> &asset,
                                const std::shared_ptr<AbstractAsset> &replacement);
/// Some uses, of whatever assets.
MARLET_EXPORT void ReplaceUses(const std::shared_ptr<Project> &project,
                               const std::vector<std::shared_ptr<AbstractAssetInstance>> &uses,
                               const std::shared_ptr<AbstractAsset> &replacement);

MARLET_EXPORT void MoveToFolder(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractAsset> &asset,
                                const std::shared_ptr<BinFolder> &folder);
/// With all that is in it. Into itself is refused, and so is the root.
MARLET_EXPORT void MoveToFolder(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<BinFolder> &moved,
                                const std::shared_ptr<BinFolder> &folder);

/// A composition like one that is there, in the same folder, whose layers refer to one another.
MARLET_EXPORT std::shared_ptr<CompositionAsset>
DuplicateComposition(const std::shared_ptr<Project> &project,
                     const std::shared_ptr<CompositionAsset> &composition, const WideString &name);

/// Layers of one composition move into a new one of the same format and times, in the same folder. A layer
/// that shows it takes the place of the topmost of them and spans them all. It shows them in space if one of
/// them stands there and no camera goes along. Parents across the edge are left, with each layer in place at
/// its first frame; other references across it are cleared.
MARLET_EXPORT std::shared_ptr<AssetLayer>
NestLayers(const std::shared_ptr<Project> &project, const std::vector<std::shared_ptr<AbstractLayer>> &layers,
           const WideString &name);

} // namespace marlet::project
