#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaPaths.h>
#include <marlet/project/MediaVideoStream.h>

#include <memory>
#include <utility>

namespace marlet::project
{

struct MediaAsset_Impl {
    static constexpr int kNotSet = -1; ///< of the trimmer's points

    kytl::KyID id;
    WideString name;
    MediaPath path;
    bool isImageSequence = false;
    bool isDirty = false;
    Uncopied<AbstractAsset::InstanceList> instances;
    kytl::KyID parentFolderID;
    KeptXml kept;
    // The path, the status, the file and the streams change under both locks, and are asked under the short
    // one alone, which nobody holds while a frame is decoded or a file is opened. The file is not touched
    // when an asset ends: its manager may have released it by then.
    mutable MediaAsset::Status status = MediaAsset::Status::Failed;
    mutable int fileState = kyh::media::kSuccess; ///< that the status has taken in
    kyh::media::KyAbstractMediaFile *mediaFile = nullptr;
    mutable Uncopied<std::shared_ptr<MediaVideoStream>> videoStream;
    mutable Uncopied<std::shared_ptr<MediaAudioStream>> audioStream;
    MediaAsset::OverrideOptions override;
    mutable int trimmerInPoint = kNotSet;
    mutable int trimmerOutPoint = kNotSet;
    mutable Uncopied<kytl::thread::KyCriticalSection> lock;
    mutable Uncopied<kytl::thread::KyCriticalSection> shortLock; ///< taken after the other one

    static MediaAsset::Status StatusOf(int code);

    // Under the short lock:

    int FileState() const { return mediaFile ? mediaFile->State() : kyh::media::kSuccess; }

    void SetStatus(int code)
    {
        status = StatusOf(code);
        // What was told of a file stands until the file tells of something else; no file is usable that says
        // it is not.
        fileState = status == MediaAsset::Status::Usable ? kyh::media::kSuccess : FileState();
    }

    MediaAsset::Status FollowFile() const
    {
        const int state = FileState();
        if (std::exchange(fileState, state) != state)
            status = StatusOf(state);
        return status;
    }

    template <class Stream> std::shared_ptr<Stream> StreamOfFile(int kind) const
    {
        return mediaFile ? std::static_pointer_cast<Stream>(mediaFile->Stream(kind)) : nullptr;
    }

    void DropStreams()
    {
        audioStream->reset();
        videoStream->reset();
    }
};

} // namespace marlet::project
