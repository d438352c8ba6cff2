#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Deserializer.h>
#include <marlet/platform/media/KyMediaTypes.h>
#include <marlet/project/AbstractAsset.h>

namespace boost
{
template <class T> class shared_array;
}

namespace marlet::project
{

class XmlCursor;
struct ImageAsset_Impl;

using kyh::media::KyChannelOrder;

/// A reference to a still image file. The file is looked at when something is asked of it, never while a
/// project is loaded; its size and layout are then kept until Sleep, SetFilename or Deserialize. Stills are
/// not turned by what a camera noted of its orientation.
///
/// What looks at the file may be called from any thread at any time, also while the file is changed. Filename
/// (which takes no lock), SetFilename, Name and the other plain fields belong to the thread that edits the
/// project.
class MARLET_EXPORT ImageAsset : public AbstractAsset
{
public:
    enum class FileStatus : int { Usable, Missing, Unreadable };

    /// The name is the last component of the path. Does not touch the file.
    static std::shared_ptr<ImageAsset> Create(const WideString &filename);
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error
    static std::shared_ptr<ImageAsset> CreateFromXml(const WideString &xml);
    /// @throws std::invalid_argument for a null pointer
    static std::shared_ptr<ImageAsset> Copy(std::shared_ptr<ImageAsset> other);
    ~ImageAsset() override;

    /// The size that a host shows for an image whose file is missing.
    static int OfflineWidth();
    static int OfflineHeight();

    std::shared_ptr<AbstractAsset> Clone() const override;
    const kytl::KyID &ID() const override;
    AssetType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    /// Whether the file is missing.
    bool IsOffline() const override;
    int Width() const override;  ///< 0 if the file cannot be read
    int Height() const override; ///< 0 if the file cannot be read
    InstanceList &Instances() override;
    const InstanceList &Instances() const override;
    const kytl::KyID &ParentFolderID() const override;
    void SetParentFolderID(const kytl::KyID &id) override;
    void ClearParentBinFolder() override;
    WideString Serialize(const ProjectTextureImageCache &textures) const override;
    void Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory,
                     ProjectTextureImageCache &textures) override;

    WideString Filename() const;
    /// Forgets what is known of the old file, and the pixel aspect ratio.
    void SetFilename(const WideString &filename);
    /// Usable if the header can be read, whether or not the pixels can.
    FileStatus Status() const;
    /// 32 if the decoded picture has an alpha channel, 24 if it has none, 0 if the file cannot be read. A
    /// picture with a colour table, and one of a format whose header does not tell, is decoded to learn it.
    int PixelBitCount() const;
    KyChannelOrder PixelChannelOrder() const;
    PAR PixelAspectRatio() const;
    void SetPixelAspectRatio(PAR par);
    /// Free for the host.
    bool IsDirty() const;
    void SetDirty(bool dirty);
    /// Forgets what is known of the file.
    void Sleep();
    /// Looks at the file if nothing is known of it.
    void Wake();
    /// The picture, scaled down to fit into a size if it is larger: 4 bytes a pixel (B, G, R, A) if
    /// PixelBitCount is 32, else 3 (R, G, B); rows are padded to a multiple of 4 bytes. Returns 0, or another
    /// value if the file cannot be used; the arguments are then untouched.
    /// @throws std::invalid_argument for a null pointer
    unsigned int ReadPixelData(int maxWidth, int maxHeight, boost::shared_array<unsigned char> &pixels,
                               int *width, int *height);

private:
    friend class AssetList;

    ImageAsset();
    explicit ImageAsset(const WideString &filename);
    ImageAsset(const XmlCursor &element, const Deserializer &);
    ImageAsset(const ImageAsset &other);

    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    void Deserialize(const XmlCursor &element);

    ValuePtr<ImageAsset_Impl> impl_;
};

} // namespace marlet::project
