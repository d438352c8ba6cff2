#include <marlet/project/ProjectTextureImageCache.h>

#include <marlet/project/TextureImage.h>

#include <unordered_map>

namespace marlet::project
{

struct ProjectTextureImageCache_Impl {
    std::unordered_map<WideString, std::weak_ptr<TextureImage>> images;
    ProjectTextureImageCache::Images textureImages;
    WideString texturesFolderPath;
};

ProjectTextureImageCache::ProjectTextureImageCache()
    : impl_(std::make_unique<ProjectTextureImageCache_Impl>())
{
}

ProjectTextureImageCache::~ProjectTextureImageCache() = default;

std::shared_ptr<TextureImage> ProjectTextureImageCache::CacheItem(const WideString &file, bool relative)
{
    const WideString path = relative ? impl_->texturesFolderPath + file : file;
    std::weak_ptr<TextureImage> &entry = impl_->images[path];
    if (const std::shared_ptr<TextureImage> cached = entry.lock()) {
        cached->Reload();
        return cached;
    }
    auto image = std::make_shared<TextureImage>();
    image->Load(path);
    entry = image;
    impl_->textureImages.Add(image);
    return image;
}

std::weak_ptr<TextureImage> ProjectTextureImageCache::GetTextureImageByID(const kytl::KyID &id) const
{
    for (const std::weak_ptr<TextureImage> &reference : impl_->textureImages) {
        const std::shared_ptr<TextureImage> image = reference.lock();
        if (image && image->ID() == id)
            return image;
    }
    return {};
}

void ProjectTextureImageCache::RelinkCachedItem(const WideString &oldPath, const WideString &newPath)
{
    const auto found = impl_->images.find(oldPath);
    if (found == impl_->images.end())
        return;
    const std::weak_ptr<TextureImage> image = found->second;
    if (const std::shared_ptr<TextureImage> alive = image.lock())
        alive->Load(newPath);
    // By iterator: the old path may be the image's own, which has just changed.
    impl_->images.erase(found);
    // An entry that stands there already stays; the image is then found by its ID alone.
    impl_->images.try_emplace(newPath, image);
}

void ProjectTextureImageCache::SetTexturesFolderPath(const WideString &path)
{
    impl_->texturesFolderPath = path;
}

const WideString &ProjectTextureImageCache::TexturesFolderPath() const
{
    return impl_->texturesFolderPath;
}

ProjectTextureImageCache::Images &ProjectTextureImageCache::TextureImages()
{
    return impl_->textureImages;
}

const ProjectTextureImageCache::Images &ProjectTextureImageCache::TextureImages() const
{
    return impl_->textureImages;
}

} // namespace marlet::project
