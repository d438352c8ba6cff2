#pragma once

#include <marlet/platform/media/MediaResources.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace kyh::media
{

/// The part of the shared resources that belongs to one stream, and goes with it.
class StreamCache
{
public:
    explicit StreamCache(MediaResourcesPtr resources)
        : resources_(static_cast<MediaResourcesPtr &&>(resources)), stream_(resources_->Frames().NewStream())
    {
    }
    StreamCache(const StreamCache &) = delete;
    StreamCache &operator=(const StreamCache &) = delete;
    ~StreamCache() { Clear(); }

    FrameCache &Frames() const { return resources_->Frames(); }
    media::Scalers &Scalers() const { return resources_->Scalers(); }
    /// Bytes of the budget for this stream, which is read, beside others that are.
    std::size_t Share() { return Frames().Budget() / Frames().CountReaders(stream_); }
    bool Find(FrameCache::Kind kind, std::int64_t number, AVFrame &frame)
    {
        return Frames().Find({stream_, kind, number}, frame);
    }
    void Put(FrameCache::Kind kind, std::int64_t number, const AVFrame &frame)
    {
        Frames().Put({stream_, kind, number}, frame);
    }
    /// Keeps a copy of bytes, as a frame's first buffer.
    void PutBytes(FrameCache::Kind kind, std::int64_t number, const unsigned char *bytes, std::size_t size)
    {
        if (Frames().Budget() < size)
            return;
        const FramePtr frame = NewFrame();
        frame->buf[0] = Frames().NewBuffer(size).release();
        if (!frame->buf[0])
            return;
        std::memcpy(frame->buf[0]->data, bytes, size);
        Put(kind, number, *frame);
    }

    /// What was kept of the stream's decoder, which is of this class, or null.
    template <class Decoder> std::unique_ptr<Decoder> TakeDecoder()
    {
        return std::unique_ptr<Decoder>(
            static_cast<Decoder *>(resources_->Decoders().Take(stream_).release()));
    }
    void KeepDecoder(std::unique_ptr<LiveDecoders::Decoder> decoder)
    {
        resources_->Decoders().Keep(stream_, static_cast<std::unique_ptr<LiveDecoders::Decoder> &&>(decoder),
                                    Frames().Budget(), Frames().Reads());
    }

    void Clear()
    {
        resources_->Decoders().Drop(stream_);
        Frames().Drop(stream_);
    }

private:
    MediaResourcesPtr resources_;
    std::uint64_t stream_;
};

} // namespace kyh::media
