#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class Project;

/// What became of an asset whose file is not there.
struct MissingFile {
    /// A file that has the name, but is not what the asset was made of.
    struct Refused {
        std::filesystem::path path;
        NarrowString reason; ///< a sentence in UTF-8, without the full stop: "there is no sound in it"
    };

    std::shared_ptr<AbstractAsset> asset;
    WideString before; ///< its path
    /// The file that was taken; several where it could not be told which, and none of these was taken then.
    std::vector<std::filesystem::path> found;
    std::vector<NarrowString> facts; ///< of each of these: "1280 x 720, 50 frames, 118204 bytes"
    /// What speaks against the file that was taken all the same, such as "it is shorter: 20 frames, where 50
    /// are asked for"; empty if nothing does.
    NarrowString doubt;
    std::vector<Refused> refused;
};

/// Looks for the missing files of a project's media and image assets below a folder, which is gone through
/// once, and points the assets at them. A file has to have the name, whatever its case, to be readable, and
/// to have the picture and the sound that the instances of the asset show. Of several, those count whose
/// names are the same in case too, then those that are as long as the instances ask for, then those whose
/// folders have the names that they had, and of copies that are the same in every byte the first.
///
/// Belongs to the thread that edits the project. Layers learn of it when they are asked what they offer.
/// @throws FileException if the folder cannot be read
MARLET_EXPORT std::vector<MissingFile> FindMissingFiles(Project &project,
                                                        const std::filesystem::path &folder);

} // namespace marlet::project
