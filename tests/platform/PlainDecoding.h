#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <encode/EncoderOutput.h>

#include <gtest/gtest.h>

#include <string>

namespace clips
{

/// Visits the frames as a decoder gives them that reads the first stream of a file from front to
/// back. The time of each is the number of its packet.
template <class Visit> void DecodePlainly(const std::string &path, Visit &&visit)
{
    AVFormatContext *format = nullptr;
    EXPECT_GE(avformat_open_input(&format, path.c_str(), nullptr, nullptr), 0);
    EXPECT_GE(avformat_find_stream_info(format, nullptr), 0);
    const AVCodecParameters &parameters = *format->streams[0]->codecpar;
    const marlet::tool::CodecPtr decoder(avcodec_alloc_context3(nullptr));
    avcodec_parameters_to_context(decoder.get(), &parameters);
    decoder->pkt_timebase = format->streams[0]->time_base;
    EXPECT_GE(avcodec_open2(decoder.get(), avcodec_find_decoder(parameters.codec_id), nullptr), 0);
    const marlet::tool::PacketPtr packet(av_packet_alloc());
    const marlet::tool::FramePtr frame(av_frame_alloc());
    const auto send = [&](const AVPacket *next) {
        avcodec_send_packet(decoder.get(), next);
        while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0)
            visit(*frame);
    };
    for (int number = 0; av_read_frame(format, packet.get()) >= 0; av_packet_unref(packet.get())) {
        if (packet->stream_index != 0)
            continue;
        packet->pts = packet->dts = number++;
        send(packet.get());
    }
    send(nullptr);
    avformat_close_input(&format);
}

} // namespace clips
