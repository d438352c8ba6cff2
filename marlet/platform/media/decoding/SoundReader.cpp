#include <marlet/platform/media/decoding/SoundReader.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/SampleFormat.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kyh::media
{

namespace
{

constexpr std::int64_t kStretchBytes = 8 << 20;
/// Packets to decode in front of a stretch, until what comes out no longer depends on where decoding began.
constexpr int kPreroll = 16;

} // namespace

SoundReader::SoundReader(FileSourcePtr source, int stream, SoundIndex index, MediaResourcesPtr resources)
    : resources_(std::move(resources)),
      source_(std::move(source)),
      stream_(stream),
      index_(std::move(index)),
      bytesPerSample_(BytesPerSample(index_.Format())),
      stretchLength_(kStretchBytes / (std::int64_t{bytesPerSample_} * index_.Channels()))
{
}

std::size_t SoundReader::BytesOf(std::int64_t samples) const
{
    return static_cast<std::size_t>(samples) * bytesPerSample_ * index_.Channels();
}

void SoundReader::Close()
{
    reader_.reset();
    av_frame_unref(frame_.get());
    samples_ = {};
    stretch_ = -1;
}

void SoundReader::Begin(std::int64_t stretch)
{
    if (!reader_)
        reader_ = std::make_unique<FrameReader>(source_, stream_, index_.Packets(), DecoderThreads::One);
    const std::int64_t first = stretch * stretchLength_;
    reader_->StartAfreshAt(std::max(index_.PacketAt(first) - kPreroll, 0));
    samples_.assign(BytesOf(std::min(stretchLength_, index_.Count() - first)), 0);
    stretch_ = stretch;
    decodedTo_ = first;
    packet_ = -1;
    offset_ = 0;
}

void SoundReader::DecodeTo(std::int64_t end)
{
    while (decodedTo_ < end && reader_->Next(*frame_))
        TakeFrame();
    // What does not decode is silent.
    decodedTo_ = std::max(decodedTo_, end);
}

void SoundReader::TakeFrame()
{
    const AVFrame &frame = *frame_;
    if (const int packet = PacketOf(frame); packet >= 0 && packet != packet_) {
        packet_ = packet;
        offset_ = 0;
    }
    if (packet_ < 0)
        return;
    const SoundIndex::Content &content = index_.ContentOf(packet_);
    // By the numbers of samples in the stream.
    const std::int64_t frameBegin = content.first + offset_ - content.skipped;
    const std::int64_t stretchBegin = stretch_ * stretchLength_;
    const std::int64_t begin = std::max({frameBegin, content.first, stretchBegin});
    const std::int64_t end = std::min({frameBegin + frame.nb_samples, content.first + content.length,
                                       stretchBegin + stretchLength_, index_.Count()});
    offset_ += frame.nb_samples;
    if (begin >= end)
        return;
    CopySamples(frame, static_cast<int>(begin - frameBegin), static_cast<int>(end - begin), index_.Channels(),
                bytesPerSample_, samples_.data() + BytesOf(begin - stretchBegin));
    decodedTo_ = std::max(decodedTo_, end);
}

void SoundReader::Read(std::int64_t start, int count, unsigned char *buffer)
{
    try {
        for (const std::int64_t end = start + count; start < end;) {
            const std::int64_t stretch = start / stretchLength_;
            const std::int64_t stretchBegin = stretch * stretchLength_;
            const std::int64_t partEnd = std::min(end, stretchBegin + stretchLength_);
            if (stretch != stretch_)
                Begin(stretch);
            DecodeTo(partEnd);
            const std::size_t bytes = BytesOf(partEnd - start);
            std::memcpy(buffer, samples_.data() + BytesOf(start - stretchBegin), bytes);
            buffer += bytes;
            start = partEnd;
        }
    } catch (...) {
        Close();
        throw;
    }
}

} // namespace kyh::media
