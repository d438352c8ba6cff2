#pragma once

#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/decoding/ClipDecoder.h>
#include <marlet/platform/media/decoding/FrameSource.h>
#include <marlet/platform/media/decoding/StreamCache.h>

#include <memory>
#include <vector>

namespace kyh::media
{

/// The frames of a video file. A frame is decoded from where its index says that decoding may begin, or by
/// reading on from the last one, and is the same either way. What is decoded on the way is kept as well.
class ClipFrames final : public FrameSource
{
public:
    /// `index` is in order. Nothing is opened before a frame is asked for.
    ClipFrames(FileSourcePtr source, int stream, FrameIndex index, MediaResourcesPtr resources);

    const FrameIndex &Index() const { return index_; }
    int Count() const override { return index_.Count(); }
    FramePtr Frame(int number) override;
    StreamCache &Cache() override { return cache_; }
    void Close() override { cache_.Clear(); }

private:
    int Shown(int number) const;
    void SetMissing(int first, int end);
    void CountStepsBack(int number);
    int FramesToKeep(const ClipDecoder &decoder) const;
    int StartFor(int number, const ClipDecoder &decoder) const;
    int GoodStart(int start) const;
    bool Decode(int number, AVFrame &frame);
    bool Find(ClipDecoder &decoder, int number);
    bool ReadOnTo(ClipDecoder &decoder, int number);

    FileSourcePtr source_;
    int stream_;
    FrameIndex index_;
    std::vector<bool> isMissing_;  ///< of the frames: they were seen not to come
    std::vector<bool> isBadStart_; ///< of the starts: what comes behind them is not what it should be
    int asked_ = 0;                ///< the frame that was asked for last
    int stepsBack_ = 0;            ///< so often in turn, the frame before was asked for
    std::size_t share_ = 0;        ///< of the budget, in bytes
    StreamCache cache_;            // goes first: its decoder reads the index
};

} // namespace kyh::media
