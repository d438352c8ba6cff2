#pragma once

#include <marlet/platform/media/Decoder.h>
#include <marlet/platform/media/PacketReader.h>

namespace kyh::media
{

/// Decodes the packets of one stream from any of them on.
class FrameReader
{
public:
    FrameReader(FileSourcePtr source, int stream, const std::vector<PacketMark> &marks,
                DecoderThreads threads)
        : packets_(static_cast<FileSourcePtr &&>(source), stream, marks),
          feed_(OpenDecoder(*packets_.Stream().codecpar, threads))
    {
    }

    /// The number of the packet that is decoded next.
    int Position() const { return packets_.Position(); }

    void StartAt(int packet)
    {
        feed_.Flush();
        packets_.GoTo(packet);
    }

    /// The next frame that decodes; false behind the last. @throws MediaFailure if the file has changed
    bool Next(AVFrame &frame)
    {
        while (!feed_.Receive(frame)) {
            if (feed_.IsAtEnd())
                return false;
            const int number = packets_.Position();
            feed_.Send(packets_.Read(), number);
        }
        return true;
    }

private:
    PacketReader packets_;
    DecoderFeed feed_;
};

} // namespace kyh::media
