#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Deserializer.h>
#include <marlet/foundation/ValuePtr.h>
#include <marlet/project/AbstractAsset.h>

namespace kyh::media
{
class KyAbstractMediaFile;
}

namespace kytl::thread
{
class KyCriticalSection;
}

namespace marlet::project
{

class MediaAudioStream;
class MediaVideoStream;
class XmlCursor;
struct AssetPicture;
struct MediaAsset_Impl;

/// A video file, an audio file or an image sequence. MediaManager makes media assets and owns the open files
/// that they point at, so that no asset may outlive its project's manager. An asset whose file cannot be
/// opened is offline: it keeps its path and has no streams.
///
/// What asks for the file, its status or its streams may be called from any thread, also while the asset is
/// relinked, and never waits for a frame that is being decoded. Everything else belongs to the thread that
/// edits the project.
class MARLET_EXPORT MediaAsset : public AbstractAsset
{
public:
    enum class Status : int { Usable, Missing, Unreadable, Failed };

    /// What the user says of the file in place of what it says itself.
    struct OverrideOptions {
        bool overrideFrameRate = false;
        bool overrideFields = false;
        bool overridePAR = false;
        double frameRate = 30.0; ///< frames per second
        VideoFields fields = {};
        PAR par = {};
    };

    /// The same asset: nothing is copied. Clone makes another one.
    static std::shared_ptr<MediaAsset> Copy(std::shared_ptr<MediaAsset> other);
    ~MediaAsset() override;

    /// Shares the open file. The copy has streams and a lock of its own.
    std::shared_ptr<AbstractAsset> Clone() const override;
    const kytl::KyID &ID() const override;
    AssetType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    bool IsOffline() const override;
    int Width() const override;  ///< 0 without video
    int Height() const override; ///< 0 without video
    InstanceList &Instances() override;
    const InstanceList &Instances() const override;
    const kytl::KyID &ParentFolderID() const override;
    void SetParentFolderID(const kytl::KyID &id) override;
    void ClearParentBinFolder() override;
    WideString Serialize(const ProjectTextureImageCache &textures) const override;
    /// Leaves file and status as they are.
    void Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                     const Abstract3DEffectFactory &effectFactory,
                     ProjectTextureImageCache &textures) override;

    WideString Filename() const;
    bool IsImageSequence() const;
    /// Null while no file could be opened. Owned by the manager.
    kyh::media::KyAbstractMediaFile *MediaFile() const;
    /// Follows the file: one that turns out to have changed or vanished is not usable any more.
    Status MediaFileStatus() const;
    /// Made on first use and kept until the asset is relinked or woken, or its file has another stream; empty
    /// if there is none.
    std::shared_ptr<MediaAudioStream> AudioStream() const;
    std::shared_ptr<MediaVideoStream> VideoStream() const;
    OverrideOptions &Override();
    const OverrideOptions &Override() const;
    /// Held while a frame is decoded and while the asset is relinked, slept or woken. Who holds it can ask
    /// several things of one file.
    kytl::thread::KyCriticalSection &Mutex() const;
    void Sleep();
    /// Drops the streams; the status follows what the file reports, if it reports anything.
    void Wake();

    /// Free for the host.
    bool IsDirty() const;
    void SetDirty(bool dirty);
    /// Frames that the host keeps for its trimmer; -1 if not set. A frame beyond the end becomes the last one
    /// when it is asked for.
    int TrimmerInPoint() const;
    int TrimmerOutPoint() const;
    void SetTrimmerInPoint(int frame);
    void SetTrimmerOutPoint(int frame);

private:
    friend class AssetList;
    friend class MediaManager;
    friend class StoredFields;
    friend AssetPicture PictureOf(const AbstractAsset &asset);

    MediaAsset();
    MediaAsset(const WideString &path, kyh::media::KyAbstractMediaFile *file, int code, bool isImageSequence);
    MediaAsset(const XmlCursor &element, const Deserializer &);
    MediaAsset(const WideString &xml, const Deserializer &);
    MediaAsset(const MediaAsset &other);

    // The trimmer's points as they stand in a file, beyond the end or not.
    int StoredTrimmerInPoint() const;
    int StoredTrimmerOutPoint() const;
    /// Held for moments while something is asked that Mutex keeps from changing.
    kytl::thread::KyCriticalSection &ShortLock() const;
    void SetMediaFile(kyh::media::KyAbstractMediaFile *file);
    void SetMediaFileStatus(int code);
    void Relink(const WideString &path, kyh::media::KyAbstractMediaFile *file, int code);
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    void Deserialize(const XmlCursor &element);

    ValuePtr<MediaAsset_Impl> impl_;
};

} // namespace marlet::project
