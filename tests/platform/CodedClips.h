#pragma once

#include "MediaClips.h"

#include <encode/EncoderOutput.h>

#include <marlet/platform/media/contents/MediaContents.h>

#include <algorithm>

namespace clips
{

inline MediaContents ContentsOf(const std::string &path, UseOfTables use = UseOfTables::Allowed)
{
    const auto source = std::make_shared<FileSource>(path);
    return LearnContents(source, std::make_unique<Demuxer>(source), use);
}

/// Frames of noise, which are large, by a codec with sound in AAC.
inline std::string CodedClip(const std::string &path, AVCodecID codec, int bFrames, int frames)
{
    marlet::tool::EncoderOutput output(path);
    const auto video = output.NewEncoder(codec);
    const AVPixelFormat *formats = video->codec->pix_fmts;
    video->width = 192;
    video->height = 128;
    video->pix_fmt = formats ? formats[0] : AV_PIX_FMT_YUV420P;
    video->time_base = {1, 25};
    video->gop_size = 12;
    video->max_b_frames = bFrames;
    video->bit_rate = 8'000'000;
    output.Check(avcodec_open2(video.get(), nullptr, nullptr));
    const auto audio = output.NewEncoder(AV_CODEC_ID_AAC);
    audio->sample_fmt = AV_SAMPLE_FMT_FLTP;
    audio->sample_rate = 16000;
    audio->time_base = {1, 16000};
    av_channel_layout_default(&audio->ch_layout, 1);
    output.Check(avcodec_open2(audio.get(), nullptr, nullptr));
    const AVStream *videoStream = output.AddStream(*video);
    const AVStream *audioStream = output.AddStream(*audio);
    output.WriteHeader();
    const marlet::tool::FramePtr picture(av_frame_alloc());
    picture->width = video->width;
    picture->height = video->height;
    picture->format = video->pix_fmt;
    output.Check(av_frame_get_buffer(picture.get(), 0));
    const marlet::tool::FramePtr sound(av_frame_alloc());
    sound->nb_samples = audio->frame_size;
    sound->format = audio->sample_fmt;
    sound->ch_layout = audio->ch_layout;
    output.Check(av_frame_get_buffer(sound.get(), 0));
    unsigned int noise = 1;
    for (int i = 0; i < frames; ++i) {
        output.Check(av_frame_make_writable(picture.get()));
        for (int plane = 0; plane < 3; ++plane)
            for (int k = 0; k < picture->linesize[plane] * picture->height / (plane ? 2 : 1); ++k)
                picture->data[plane][k] =
                    static_cast<unsigned char>((noise = noise * 1664525 + 1013904223) >> 24);
        picture->pts = i;
        output.Encode(*video, *videoStream, picture.get());
        output.Check(av_frame_make_writable(sound.get()));
        std::fill_n(reinterpret_cast<float *>(sound->data[0]), sound->nb_samples,
                    0.25f * static_cast<float>(i % 3));
        sound->pts = i * sound->nb_samples;
        output.Encode(*audio, *audioStream, sound.get());
    }
    output.Encode(*video, *videoStream, nullptr);
    output.Encode(*audio, *audioStream, nullptr);
    output.Finish();
    return path;
}

} // namespace clips
