#pragma once

#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/decoding/FrameReader.h>
#include <marlet/platform/media/decoding/FrameSource.h>

#include <memory>

namespace kyh::media
{

/// The frames of a video file. A frame is decoded from where its index says that decoding may begin, or by
/// reading on from the last one, and is the same either way.
class ClipFrames final : public FrameSource
{
public:
    /// `index` is in order. Nothing is opened before a frame is asked for.
    ClipFrames(FileSourcePtr source, int stream, FrameIndex index, MediaResourcesPtr resources);

    const FrameIndex &Index() const { return index_; }
    int Count() const override { return index_.Count(); }
    const AVFrame &Frame(int number) override;
    void Close() override;

private:
    FrameReader &Reader();
    void StartAt(int start);
    bool CanReadOnTo(int number);
    bool ReadOnTo(int number);
    void FindFrame(int number);

    MediaResourcesPtr resources_;
    FileSourcePtr source_;
    int stream_;
    FrameIndex index_;
    std::unique_ptr<FrameReader> reader_;
    int start_ = 0;                ///< where decoding began, by its number in the index
    FramePtr frame_ = NewFrame();  ///< the last that was asked for
    int number_ = -1;              ///< its number, or -1
    FramePtr behind_ = NewFrame(); ///< decoded already while looking for one that is missing
    int behindNumber_ = -1;
};

} // namespace kyh::media
