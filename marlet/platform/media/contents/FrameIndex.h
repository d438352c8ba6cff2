#pragma once

#include <marlet/platform/media/contents/PacketTable.h>

#include <vector>

namespace kyh::media
{

/// The frames of a video stream by number: in the order in which they are shown, those left out that are not
/// meant to be seen or are known not to decode.
class FrameIndex
{
public:
    /// A place to begin decoding at.
    struct Start {
        int packet;
        int frame; ///< the first that comes out as it should

        bool operator==(const Start &) const = default;
    };

    explicit FrameIndex(AVCodecID codec) : codec_(codec) {}
    /// One that is complete. `frames` are the packets of the frames.
    FrameIndex(AVCodecID codec, std::vector<PacketMark> packets, std::vector<int> frames,
               std::vector<Start> starts);

    AVCodecID Codec() const { return codec_; }
    /// Takes in the next packet of the file. `parser`, which may be null, has seen it.
    void Add(const AVPacket &packet, const AVCodecParserContext *parser);
    /// The same of a packet that was not read.
    void Add(const ListedPacket &packet);
    /// Orders the frames by their times. False if times do not tell which there are: SetFrames must then.
    bool OrderByTimes();
    /// Whether each packet is a frame, as far as packets say.
    bool HasFrameInEach() const { return !hasOdd_; }
    /// Takes over the packets of the frames in the order in which they are shown.
    void SetFrames(std::vector<int> packets);
    /// Whether the first packet leads to the first frame, as all of the container's key frames should.
    bool IsFirstSure() const;
    /// Leaves out the frames before `first`.
    void TrimTo(int first);
    /// Nothing is added any more: lets go of memory kept for that.
    void Tighten();

    const std::vector<PacketMark> &Packets() const { return packets_; }
    const std::vector<int> &Frames() const { return frames_; } ///< their packets
    int Count() const { return static_cast<int>(frames_.size()); }
    /// The number of the frame that a packet decodes to, or -1.
    int FrameOf(int packet) const { return packet < 0 ? -1 : frameOfPacket_[packet]; }
    int PacketOf(int frame) const { return frames_[frame]; }
    /// The first is the start of the file.
    const std::vector<Start> &Starts() const { return starts_; }
    /// Which of the starts is the last that leads to a frame.
    int StartFor(int frame) const;
    /// From the first frame to the last, in the stream's units of time; 0 if times do not tell.
    std::int64_t Span() const;

    bool operator==(const FrameIndex &) const = default;

private:
    void Add(const PacketMark &mark, bool isHidden, bool isOdd);
    bool IsOdd(int size) const;
    bool IsOdd(const AVPacket &packet, const AVCodecParserContext *parser) const;
    bool IsStart(int packet) const;
    void NumberFrames();
    void OrderStarts();

    AVCodecID codec_;
    std::vector<PacketMark> packets_;
    std::vector<bool> isHidden_;
    bool hasOdd_ = false; ///< a packet that may hold another count of frames than one
    bool hasAllTimes_ = true;
    std::vector<int> frames_; ///< the packets of the frames
    std::vector<int> frameOfPacket_;
    std::vector<Start> starts_;
};

} // namespace kyh::media
