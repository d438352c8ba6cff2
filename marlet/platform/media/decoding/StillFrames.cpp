#include <marlet/platform/media/decoding/StillFrames.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/Decoder.h>
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

DecoderFeed NewPictureDecoder(AVCodecID codec, FrameCache &cache)
{
    const std::unique_ptr<AVCodecParameters, FreeByAddress<avcodec_parameters_free>> parameters =
        Allocated(std::unique_ptr<AVCodecParameters, FreeByAddress<avcodec_parameters_free>>(
            avcodec_parameters_alloc()));
    parameters->codec_type = AVMEDIA_TYPE_VIDEO;
    parameters->codec_id = codec;
    return DecoderFeed(OpenDecoder(*parameters, DecoderThreads::Slices, &cache));
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
    : sequence_(std::move(sequence)),
      codec_(CodecOfPicture(sequence_.members.front().path)),
      cache_(std::move(resources))
{
}

FramePtr StillFrames::Decode(const std::string &path)
{
    const PacketPtr packet = ReadPicture(path);
    DecoderFeed decoder = NewPictureDecoder(codec_, cache_.Frames());
    FramePtr frame = NewFrame();
    decoder.Send(packet.get(), 0);
    if (!decoder.Receive(*frame)) {
        decoder.Send(nullptr, 0);
        if (!decoder.Receive(*frame))
            throw MediaFailure{kDamaged};
    }
    profile_ = decoder.Context().profile;
    return frame;
}

FramePtr StillFrames::Frame(int number)
{
    const ImageSequence::Member &member = sequence_.MemberAt(number);
    FramePtr frame = NewFrame();
    if (cache_.Find(FrameCache::Kind::Frame, member.frame, *frame))
        return frame;
    frame = Decode(member.path);
    cache_.Put(FrameCache::Kind::Frame, member.frame, *frame);
    return frame;
}

} // namespace kyh::media
