#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class TextureImage;
struct ProjectTextureImageCache_Impl;

/// Hands out one shared TextureImage for each file path. It holds them weakly: an image lives as long as
/// somebody keeps what CacheItem returned. Nothing of it is part of the file. Used from one thread at a time.
class MARLET_EXPORT ProjectTextureImageCache
{
public:
    using Images = kytl::KyList<std::weak_ptr<TextureImage>, std::vector>;

    ProjectTextureImageCache();
    ProjectTextureImageCache(const ProjectTextureImageCache &) = delete;
    ProjectTextureImageCache &operator=(const ProjectTextureImageCache &) = delete;
    ~ProjectTextureImageCache();

    /// The image of a file, loaded again if it is there already. A relative name is put directly behind the
    /// textures folder, with no separator between them. Never empty: an image whose file cannot be opened
    /// says so itself.
    std::shared_ptr<TextureImage> CacheItem(const WideString &file, bool relative);
    /// Empty if no image that is alive has that ID.
    std::weak_ptr<TextureImage> GetTextureImageByID(const kytl::KyID &id) const;
    /// Moves an image to another file; both are full paths. It keeps its ID. An unknown old path changes
    /// nothing.
    void RelinkCachedItem(const WideString &oldPath, const WideString &newPath);
    /// With its trailing separator. Images that are there keep their paths.
    void SetTexturesFolderPath(const WideString &path);
    const WideString &TexturesFolderPath() const;
    /// Every image ever made here, in order of creation; those that are gone are expired.
    Images &TextureImages();
    const Images &TextureImages() const;

private:
    std::unique_ptr<ProjectTextureImageCache_Impl> impl_;
};

} // namespace marlet::project
