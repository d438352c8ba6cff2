#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <string>

namespace marlet::tool
{

/// Frees what the libraries hand out, by a function that takes the address of the pointer.
template <auto Free> struct FreeByAddress {
    template <class T> void operator()(T *thing) const { Free(&thing); }
};
struct FreeFormat {
    void operator()(AVFormatContext *format) const { avformat_free_context(format); }
};

using CodecPtr = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using FramePtr = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using PacketPtr = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using FormatPtr = std::unique_ptr<AVFormatContext, FreeFormat>;

/// The container that an encoder writes: a temporary file beside the target, which is renamed over it when
/// it is whole and removed otherwise.
class EncoderOutput
{
public:
    /// @throws Failure if no container has the ending of the path
    explicit EncoderOutput(const std::string &path);
    EncoderOutput(const EncoderOutput &) = delete;
    EncoderOutput &operator=(const EncoderOutput &) = delete;
    ~EncoderOutput();

    /// Does nothing for a result of 0 or above.
    /// @throws Failure with the words for the result
    void Check(int result) const;
    [[noreturn]] void Fail(const std::string &message) const;

    bool Holds(AVCodecID codec) const;
    /// An encoder's context with what the container asks for.
    CodecPtr NewEncoder(AVCodecID codec) const;
    /// A stream for an encoder that was opened.
    AVStream *AddStream(const AVCodecContext &encoder);
    void WriteHeader();
    /// Hands over the encoder's content. Null as the frame ends the stream.
    void Encode(AVCodecContext &encoder, const AVStream &stream, const AVFrame *frame);
    void Finish();

private:
    std::string path_;
    std::string temporaryPath_;
    FormatPtr format_;
    PacketPtr packet_;
};

} // namespace marlet::tool
