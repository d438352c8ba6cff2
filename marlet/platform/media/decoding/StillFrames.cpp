#include <marlet/platform/media/decoding/StillFrames.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/files/Demuxer.h>

#include <limits>
#include <utility>

namespace kyh::media
{

namespace
{

AVCodecID CodecOfPicture(const std::string &path)
{
    Demuxer demuxer(std::make_shared<FileSource>(path));
    if (!demuxer.IsStill())
        throw MediaFailure{kUnknownFormat};
    demuxer.OpenStreams();
    return demuxer.StillCodec();
}

std::unique_ptr<DecoderFeed> NewPictureDecoder(AVCodecID codec)
{
    const std::unique_ptr<AVCodecParameters, FreeByAddress<avcodec_parameters_free>> parameters =
        Allocated(std::unique_ptr<AVCodecParameters, FreeByAddress<avcodec_parameters_free>>(
            avcodec_parameters_alloc()));
    parameters->codec_type = AVMEDIA_TYPE_VIDEO;
    parameters->codec_id = codec;
    return std::make_unique<DecoderFeed>(OpenDecoder(*parameters, DecoderThreads::Slices));
}

/// The whole file as one packet.
PacketPtr ReadPicture(const std::string &path)
{
    const FileSource source(path);
    const std::int64_t size = source.Size();
    if (size <= 0 || size > std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE)
        throw MediaFailure{kDamaged};
    PacketPtr packet = NewPacket();
    if (av_new_packet(packet.get(), static_cast<int>(size)) < 0)
        throw std::bad_alloc();
    if (source.Read(0, packet->data, static_cast<std::size_t>(size)) != size)
        throw MediaFailure{kDamaged};
    return packet;
}

} // namespace

StillFrames::StillFrames(ImageSequence sequence, MediaResourcesPtr resources)
    : resources_(std::move(resources)),
      sequence_(std::move(sequence)),
      codec_(CodecOfPicture(sequence_.members.front().path))
{
}

void StillFrames::Decode(const std::string &path)
{
    const PacketPtr packet = ReadPicture(path);
    if (!decoder_)
        decoder_ = NewPictureDecoder(codec_);
    decoder_->Flush();
    decoder_->Send(packet.get(), 0);
    if (decoder_->Receive(*frame_))
        return;
    decoder_->Send(nullptr, 0);
    if (!decoder_->Receive(*frame_))
        throw MediaFailure{kDamaged};
}

const AVFrame &StillFrames::Frame(int number)
{
    const ImageSequence::Member &member = sequence_.MemberAt(number);
    if (shown_ != &member) {
        shown_ = nullptr;
        Decode(member.path);
        shown_ = &member;
    }
    return *frame_;
}

void StillFrames::Close()
{
    decoder_.reset();
    av_frame_unref(frame_.get());
    shown_ = nullptr;
}

} // namespace kyh::media
