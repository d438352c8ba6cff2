#pragma once

#include <marlet/platform/media/decoding/Decoder.h>
#include <marlet/platform/media/files/PacketReader.h>

#include <limits>

namespace kyh::media
{

/// Decodes the packets of one stream from any of them on.
class FrameReader
{
public:
    /// With a cache, frames are decoded into its memory.
    FrameReader(FileSourcePtr source, int stream, const std::vector<PacketMark> &marks,
                DecoderThreads threads, FrameCache *cache = nullptr)
        : packets_(static_cast<FileSourcePtr &&>(source), stream, marks),
          threads_(threads),
          cache_(cache),
          feed_(NewDecoder())
    {
    }

    const AVCodecContext &Context() const { return feed_.Context(); }
    const AVCodecParameters &Parameters() { return *packets_.Stream().codecpar; }
    /// Sends all packets to another decoder too, which must stay as long as the reader.
    void Share(DecoderFeed &other) { other_ = &other; }

    /// The number of the packet that is decoded next.
    int Position() const { return packets_.Position(); }

    void StartAt(int packet)
    {
        if (packet > 0 && !hasSeenFirst_)
            SeeFirst();
        hasSeenFirst_ = true;
        JumpTo(packet);
    }

    /// With a decoder that has not seen the first packet, and keeps what it does not forget when it is told
    /// to.
    void JumpTo(int packet)
    {
        feed_.Flush();
        if (other_)
            other_->Flush();
        packets_.GoTo(packet);
    }

    /// With a new decoder: those of sound carry on overlaps and the state of their noise, whatever they are
    /// told to forget.
    void StartAfreshAt(int packet)
    {
        feed_ = DecoderFeed(NewDecoder());
        hasSeenFirst_ = packet == 0;
        packets_.GoTo(packet);
    }

    /// The next frame that decodes; false behind the last, or if it does not come of the packets before
    /// `end`.
    /// @throws MediaFailure if the file has changed
    bool Next(AVFrame &frame, int end = std::numeric_limits<int>::max())
    {
        while (!feed_.Receive(frame)) {
            const int number = packets_.Position();
            if (feed_.IsAtEnd() || number >= end)
                return false;
            AVPacket *packet = packets_.Read();
            if (other_)
                other_->Send(packet, number);
            feed_.Send(packet, number);
        }
        return true;
    }
    /// Whether nothing more comes.
    bool IsAtEnd() const { return feed_.IsAtEnd(); }

private:
    CodecPtr NewDecoder() { return OpenDecoder(Parameters(), threads_, cache_); }

    /// What an encoder says of itself in the first packet alone, decoders go by to the end of the stream.
    void SeeFirst()
    {
        packets_.GoTo(0);
        feed_.Send(packets_.Read(), 0);
    }

    PacketReader packets_;
    DecoderThreads threads_;
    FrameCache *cache_;
    DecoderFeed feed_;
    DecoderFeed *other_ = nullptr;
    bool hasSeenFirst_ = false;
};

} // namespace kyh::media
