#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/project/MissingFiles.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AudioVideoSettings;
class BinFolder;
class CompositionAsset;
class MediaAsset;
class MediaProgress;
class Project;

// Files that become assets of a project, as one Edit each. A folder that is not given is the root. A file
// that cannot be used is an OperationException, and nothing is changed. Null pointers are
// std::invalid_argument, but for folders. Belongs to the thread that edits the project.

/// Still images become images, everything else media, which are opened on all cores. A file that the project
/// has already gives the asset that there is. In the order of the paths.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractAsset>>
ImportFiles(const std::shared_ptr<Project> &project, const std::vector<WideString> &paths,
            const std::shared_ptr<BinFolder> &folder = {}, MediaProgress *progress = nullptr);
/// The images that belong to a member, shown at a rate in frames per second.
MARLET_EXPORT std::shared_ptr<MediaAsset> ImportImageSequence(const std::shared_ptr<Project> &project,
                                                              const WideString &path, double frameRate,
                                                              const std::shared_ptr<BinFolder> &folder = {});

/// A new composition in the folder of an asset, with a layer that shows the whole of it. It has the asset's
/// name and format; what the asset does not say, such as the rate of a still, is that of the settings.
MARLET_EXPORT std::shared_ptr<CompositionAsset> AddCompositionOf(const std::shared_ptr<Project> &project,
                                                                 const std::shared_ptr<AbstractAsset> &asset,
                                                                 const AudioVideoSettings &settings);

/// Points a media asset at another file, which need not be there, and lets what shows it learn what that
/// offers. A member of a sequence for an image sequence.
MARLET_EXPORT void RelinkAsset(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<MediaAsset> &asset, const WideString &path);

/// Points all media and images whose files are missing at those that FindMissingFiles finds below a folder,
/// and lets what shows them learn what these offer. @throws FileException if the folder cannot be read
MARLET_EXPORT std::vector<MissingFile> RelinkMissingFiles(const std::shared_ptr<Project> &project,
                                                          const std::filesystem::path &folder);

} // namespace marlet::project
