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

constexpr std::int64_t kStretchBytes = 1 << 15;
// Where codecs carry something on, the beginning is what a decode from the start of the file gives.
constexpr std::int64_t kFirstCarriedBytes = 8 << 20;
constexpr std::int64_t kCarriedBytes = 1 << 20;

bool IsPcm(AVCodecID codec)
{
    return codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT;
}

} // namespace

SoundReader::SoundReader(FileSourcePtr source, int stream, SoundIndex index, MediaResourcesPtr resources)
    : source_(std::move(source)), stream_(stream), index_(std::move(index)), cache_(std::move(resources))
{
}

int SoundReader::BytesOfSample() const
{
    return BytesPerSample(index_.Format());
}

std::int64_t SoundReader::FrameBytes() const
{
    return std::int64_t{BytesOfSample()} * index_.Channels();
}

const SoundReader::Kind SoundReader::kCarried = {Dependence::Carried, {.packets = 16}};

/// By what was found when pieces were compared with a decode from the start.
SoundReader::Kind SoundReader::KindOf(AVCodecID codec, int profile)
{
    constexpr int kMostBorrowed = 511;
    switch (codec) {
    case AV_CODEC_ID_AAC:
        // Other profiles predict from all that was before, or extend the band by noise of another kind.
        return profile == FF_PROFILE_AAC_LOW ? Kind{Dependence::ToSee, {.packets = 1}} : kCarried;
    case AV_CODEC_ID_ADPCM_IMA_WAV:
    case AV_CODEC_ID_ADPCM_MS:
    case AV_CODEC_ID_ADPCM_SWF:
    case AV_CODEC_ID_ALAC:
    case AV_CODEC_ID_FLAC:
    case AV_CODEC_ID_TTA:
    case AV_CODEC_ID_WAVPACK:
        return {Dependence::Over, {}};
    case AV_CODEC_ID_VORBIS:
        return {Dependence::Over, {.packets = 1}};
    case AV_CODEC_ID_MP3:
        return {Dependence::Over, {.packets = 2, .bytes = kMostBorrowed}};
    default:
        // Even the decoder of MP2 carries the rounding of one sample on to the next.
        return IsPcm(codec) ? Kind{Dependence::Over, {}} : kCarried;
    }
}

std::unique_ptr<SoundDecoder> SoundReader::TakeDecoder()
{
    if (auto decoder = cache_.TakeDecoder<SoundDecoder>())
        return decoder;
    auto decoder = std::make_unique<SoundDecoder>(source_, stream_, index_);
    if (!kind_)
        kind_ = KindOf(decoder->Codec(), index_.Profile());
    if (kind_->dependence == Dependence::ToSee && !decoder->BeginToCheck())
        CarryOn();
    return decoder;
}

/// With stretches of another kind.
void SoundReader::CarryOn()
{
    kind_ = kCarried;
    cache_.Clear();
}

SoundStretch SoundReader::StretchAt(std::int64_t sample) const
{
    const std::int64_t firstEnd = (IsCarried() ? kFirstCarriedBytes : kStretchBytes) / FrameBytes();
    const std::int64_t length = (IsCarried() ? kCarriedBytes : kStretchBytes) / FrameBytes();
    SoundStretch stretch;
    stretch.number = sample < firstEnd ? 0 : 1 + (sample - firstEnd) / length;
    stretch.begin = stretch.number == 0 ? 0 : firstEnd + (stretch.number - 1) * length;
    stretch.end = std::min(firstEnd + stretch.number * length, index_.Count());
    stretch.decodedTo = stretch.begin;
    return stretch;
}

/// Whether a stretch is kept up to a sample.
bool SoundReader::FindStretch(SoundStretch &stretch, std::int64_t end)
{
    if (!cache_.Find(FrameCache::Kind::Sound, stretch.number, *stretch.bytes))
        return false;
    stretch.decodedTo = stretch.begin + stretch.bytes->nb_samples;
    return stretch.decodedTo >= end;
}

void SoundReader::Begin(SoundDecoder &decoder, const SoundStretch &stretch)
{
    const auto size = static_cast<std::size_t>((stretch.end - stretch.begin) * FrameBytes());
    SoundStretch &begun = decoder.Stretch();
    begun = SoundStretch();
    begun.number = stretch.number;
    begun.begin = stretch.begin;
    begun.end = stretch.end;
    begun.decodedTo = stretch.begin;
    begun.bytes->buf[0] = cache_.Frames().NewBuffer(size).release();
    if (!begun.bytes->buf[0])
        throw std::bad_alloc();
    std::memset(begun.bytes->buf[0]->data, 0, size);
    if (IsCarried() || !decoder.IsAt(stretch.begin))
        decoder.StartAt(stretch.begin, kind_->preroll);
}

/// The bytes behind what is decoded are written later, to where the cache refers as well: only this stream
/// reads them, and only up to where they were decoded. False if there is noise in what is to have none.
bool SoundReader::Decode(SoundStretch &stretch, std::int64_t end)
{
    std::unique_ptr<SoundDecoder> decoder = TakeDecoder();
    if (decoder->Stretch().number != stretch.number)
        Begin(*decoder, stretch);
    SoundStretch &decoded = decoder->Stretch();
    decoder->DecodeTo(end);
    if (!decoder->IsSure())
        return false;
    decoded.bytes->nb_samples = static_cast<int>(decoded.decodedTo - decoded.begin);
    cache_.Put(FrameCache::Kind::Sound, decoded.number, *decoded.bytes);
    av_frame_unref(stretch.bytes.get());
    if (av_frame_ref(stretch.bytes.get(), decoded.bytes.get()) < 0)
        throw std::bad_alloc();
    cache_.KeepDecoder(std::move(decoder));
    return true;
}

void SoundReader::Read(std::int64_t start, int count, unsigned char *buffer)
{
    if (!kind_)
        cache_.KeepDecoder(TakeDecoder());
    for (const std::int64_t end = start + count; start < end;) {
        SoundStretch stretch = StretchAt(start);
        const std::int64_t partEnd = std::min(end, stretch.end);
        if (!FindStretch(stretch, partEnd) && !Decode(stretch, partEnd)) {
            CarryOn();
            continue;
        }
        const auto bytes = static_cast<std::size_t>((partEnd - start) * FrameBytes());
        std::memcpy(buffer, stretch.bytes->buf[0]->data + (start - stretch.begin) * FrameBytes(), bytes);
        buffer += bytes;
        start = partEnd;
    }
}

} // namespace kyh::media
