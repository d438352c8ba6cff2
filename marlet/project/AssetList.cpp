#include <marlet/project/AssetList.h>

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/xml/LoadContext.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/project/AssetsByID.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaLoad.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/SolidAsset.h>

#include <filesystem>
#include <system_error>

namespace marlet::project
{

struct AssetList_Impl {
    AssetList::Assets assets;
    BinFolder bin;
    /// The two that GetByID fills in, on whichever thread comes first.
    kytl::thread::KyCriticalSection lock;
    bool lookupDirty = true;
    AssetsByID lookup;
};

namespace
{

/// A load tells of what its host cannot show.
void TellIfMissing(bool isThere, const XmlCursor &element, const AbstractAsset &asset, const WideString &file)
{
    if (!isThere)
        TellLoad(LoadEntry::Severity::Warning, element, "the file is offline: " + ToUtf8(file), {asset.ID()});
}

void TellIfOffline(const XmlCursor &element, const ImageAsset &image)
{
    std::error_code error;
    if (LoadContext::Current())
        TellIfMissing(std::filesystem::is_regular_file(std::filesystem::path(image.Filename()), error),
                      element, image, image.Filename());
}

void TellIfOffline(const XmlCursor &element, const MediaAsset &media)
{
    if (LoadContext::Current())
        TellIfMissing(media.MediaFileStatus() == MediaAsset::Status::Usable, element, media,
                      media.Filename());
}

} // namespace

AssetList::AssetList() : impl_(std::make_unique<AssetList_Impl>())
{
}

AssetList::~AssetList() = default;

AssetList::Assets &AssetList::All()
{
    const kytl::thread::KyScopedLock hold(impl_->lock);
    impl_->lookupDirty = true;
    return impl_->assets;
}

const AssetList::Assets &AssetList::All() const
{
    return impl_->assets;
}

std::shared_ptr<AbstractAsset> AssetList::GetByID(const kytl::KyID &id) const
{
    // A reference that is not set leads nowhere, even where an asset of a file has the null ID.
    if (id.IsNull())
        return nullptr;
    const kytl::thread::KyScopedLock hold(impl_->lock);
    if (impl_->lookupDirty) {
        impl_->lookup = AssetsByID(impl_->assets);
        impl_->lookupDirty = false;
    }
    return impl_->lookup.Find(id);
}

AssetList::Assets AssetList::GetByType(AssetType type) const
{
    Assets result;
    for (const std::shared_ptr<AbstractAsset> &asset : impl_->assets)
        if (asset && asset->Type() == type)
            result.Add(asset);
    return result;
}

BinFolder &AssetList::Bin()
{
    return impl_->bin;
}

const BinFolder &AssetList::Bin() const
{
    return impl_->bin;
}

void AssetList::Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const
{
    const XmlElement element(writer, "AssetList", 0);
    {
        const XmlElement assets(writer, "Assets");
        for (const std::shared_ptr<AbstractAsset> &asset : impl_->assets)
            if (asset)
                asset->Serialize(writer, textures);
    }
    impl_->bin.Serialize(writer);
}

void AssetList::Deserialize(const XmlCursor &element, MediaManager &media, MediaProgress *progress,
                            const std::shared_ptr<AbstractPluginManager> &pluginManager,
                            const Abstract3DEffectFactory &effectFactory, ProjectTextureImageCache &textures)
{
    element.RequireHeader("AssetList", 0);
    Assets &assets = All();
    assets.Clear();
    const XmlCursor list = element.Find("Assets");
    const std::unique_ptr<MediaLoad> load = media.BeginLoad(list, progress);
    for (XmlCursor child = list.FirstChild(); !child.IsNull(); child = child.Next()) {
        if (child.Is("SolidAsset"))
            assets.Add(std::shared_ptr<SolidAsset>(new SolidAsset(child)));
        else if (child.Is("ImageAsset"))
            assets.Add(std::shared_ptr<ImageAsset>(new ImageAsset(child, Deserializer())));
        else if (child.Is("CompositionAsset"))
            assets.Add(std::shared_ptr<CompositionAsset>(
                new CompositionAsset(child, pluginManager, effectFactory, textures)));
        else if (child.Is("MediaAsset"))
            assets.Add(media.CreateMediaAsset(child, *load));
        if (child.Is("ImageAsset"))
            TellIfOffline(child, static_cast<const ImageAsset &>(*assets.back()));
        else if (child.Is("MediaAsset"))
            TellIfOffline(child, static_cast<const MediaAsset &>(*assets.back()));
    }
    // The folders name assets by ID, so they are read once all assets are there.
    impl_->bin.Deserialize(element.Find("BinFolder"), AssetsByID(assets));
}

} // namespace marlet::project
