#pragma once

#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/contents/SoundIndex.h>
#include <marlet/platform/media/decoding/FrameReader.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kyh::media
{

/// The samples of an audio stream. They are decoded in stretches that always begin at the same place, so that
/// a sample is the same whatever was asked for before, even of a codec that carries something on from packet
/// to packet. Not for several threads at once.
class SoundReader
{
public:
    SoundReader(FileSourcePtr source, int stream, SoundIndex index, MediaResourcesPtr resources);

    const SoundIndex &Index() const { return index_; }
    int BytesOfSample() const { return bytesPerSample_; } ///< of one channel
    /// Samples that all lie inside. @throws MediaFailure
    void Read(std::int64_t start, int count, unsigned char *buffer);
    /// Lets go of the file and the decoder, until samples are asked for.
    void Close();

private:
    std::size_t BytesOf(std::int64_t samples) const;
    void Begin(std::int64_t stretch);
    void DecodeTo(std::int64_t end);
    void TakeFrame();

    MediaResourcesPtr resources_;
    FileSourcePtr source_;
    int stream_;
    SoundIndex index_;
    int bytesPerSample_;
    std::int64_t stretchLength_; ///< samples
    std::unique_ptr<FrameReader> reader_;
    FramePtr frame_ = NewFrame();
    std::int64_t stretch_ = -1;          ///< the number of the stretch at hand, or -1
    std::vector<unsigned char> samples_; ///< of that stretch
    std::int64_t decodedTo_ = 0;         ///< the sample behind the last one at hand
    int packet_ = -1;                    ///< that the last frame came of
    int offset_ = 0;                     ///< samples that came of it
};

} // namespace kyh::media
