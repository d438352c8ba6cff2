#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace kyh::media
{

/// Frees what libav hands out, by a function that takes the address of the pointer.
template <auto Free> struct FreeByAddress {
    template <class T> void operator()(T *thing) const { Free(&thing); }
};
struct CloseParser {
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
};
struct FreeScaler {
    void operator()(SwsContext *scaler) const { sws_freeContext(scaler); }
};
struct FreeInput {
    void operator()(AVIOContext *input) const
    {
        av_freep(&input->buffer);
        avio_context_free(&input);
    }
};

using CodecPtr = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using FormatPtr = std::unique_ptr<AVFormatContext, FreeByAddress<avformat_close_input>>;
using FramePtr = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using InputPtr = std::unique_ptr<AVIOContext, FreeInput>;
using PacketPtr = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using ParserPtr = std::unique_ptr<AVCodecParserContext, CloseParser>;
using ScalerPtr = std::unique_ptr<SwsContext, FreeScaler>;

/// @throws std::bad_alloc for null, by which libav reports that memory has run out
template <class Handle> Handle Allocated(Handle handle)
{
    if (!handle)
        throw std::bad_alloc();
    return handle;
}

inline FramePtr NewFrame()
{
    return Allocated(FramePtr(av_frame_alloc()));
}

inline PacketPtr NewPacket()
{
    return Allocated(PacketPtr(av_packet_alloc()));
}

} // namespace kyh::media
