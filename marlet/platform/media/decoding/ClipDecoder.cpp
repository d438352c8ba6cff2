#include <marlet/platform/media/decoding/ClipDecoder.h>

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <utility>

namespace kyh::media
{

namespace
{

/// Frames to decode on over rather than to seek, which empties the decoder.
constexpr int kShortJump = 4;
/// Packets that a decoder wants at most before it hands out a frame: those kept for reordering, in fields,
/// and one for each thread.
constexpr int kLongestDelay = 64;

bool PredictsFrames(const AVCodecContext &context)
{
    const AVCodecDescriptor *descriptor = avcodec_descriptor_get(context.codec_id);
    return !descriptor || !(descriptor->props & AV_CODEC_PROP_INTRA_ONLY);
}

} // namespace

ClipDecoder::ClipDecoder(FileSourcePtr source, int stream, const FrameIndex &index, FrameCache &cache)
    : index_(index),
      cache_(cache),
      reader_(std::move(source), stream, index.Packets(), DecoderThreads::All, &cache)
{
    // What it keeps of motion and modes, and its demuxer of the container.
    constexpr std::size_t kAtLeast = std::size_t{1} << 20;
    charge_ = kAtLeast + (PredictsFrames(reader_.Context()) ? 4 : 1) * FrameBytes();
    cache_.Charge(charge_);
}

std::size_t ClipDecoder::FrameBytes() const
{
    const AVCodecContext &context = reader_.Context();
    const int bytes = av_image_get_buffer_size(context.pix_fmt, context.coded_width, context.coded_height, 1);
    return static_cast<std::size_t>(std::max(bytes, 0));
}

std::size_t ClipDecoder::Bytes() const
{
    const AVCodecContext &context = reader_.Context();
    const int forReference = PredictsFrames(context) ? context.has_b_frames + context.refs : 0;
    return charge_ + static_cast<std::size_t>(forReference + context.thread_count + 2) * FrameBytes();
}

void ClipDecoder::StartAt(int start)
{
    const FrameIndex::Start &place = index_.Starts()[start];
    reader_.StartAt(place.packet);
    start_ = start;
    isInStep_ = start == 0 || !PredictsFrames(reader_.Context());
    number_ = isInStep_ ? place.frame - 1 : kUnknown;
    nextNumber_ = kUnknown;
    av_frame_unref(frame_.get());
    av_frame_unref(next_.get());
}

const AVFrame *ClipDecoder::FrameOf(int number) const
{
    return number == number_ && frame_->buf[0] ? frame_.get() : nullptr;
}

bool ClipDecoder::LeadsTo(int number) const
{
    if (!isInStep_ || number_ == kUnknown || number <= number_)
        return false;
    return number - number_ <= kShortJump ||
           index_.Starts()[index_.StartFor(number)].packet <= reader_.Position();
}

/// Frames that are shown before the start may lack what they are predicted from.
bool ClipDecoder::FindNext(int end)
{
    const int first = std::max(index_.Starts()[start_].frame, number_ + 1);
    while (nextNumber_ == kUnknown) {
        if (!reader_.Next(*next_, end))
            return false;
        const int number = index_.FrameOf(PacketOf(*next_));
        if (number >= first)
            nextNumber_ = number;
    }
    return true;
}

int ClipDecoder::NextUpTo(int number)
{
    if (!FindNext(index_.PacketOf(number) + kLongestDelay))
        return reader_.IsAtEnd() ? index_.Count() : number + 1;
    isInStep_ = isInStep_ || IsFirstRight();
    return nextNumber_;
}

/// What a key frame is predicted from, or patched with where it is damaged, lies before the start. Decoders
/// of H.264 alone hold frames back until they have recovered.
bool ClipDecoder::IsFirstRight() const
{
    return next_->decode_error_flags == 0 &&
           (nextNumber_ == index_.Starts()[start_].frame || reader_.Context().codec_id == AV_CODEC_ID_H264);
}

void ClipDecoder::Advance()
{
    std::swap(frame_, next_);
    number_ = std::exchange(nextNumber_, kUnknown);
    av_frame_unref(next_.get());
}

} // namespace kyh::media
