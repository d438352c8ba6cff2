#include <bench/support/MediaClips.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <cmath>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <unistd.h>

namespace bench
{

namespace
{

namespace fs = std::filesystem;

constexpr int kFrameRate = 25;
constexpr int kSampleRate = 48000;

struct ClipShape {
    int width = 0;
    int height = 0;
    int frames = 0; ///< that are encoded
    int repeats = 1;
    int groupSize = 12; ///< frames from one key frame to the next
    bool hasSound = false;
};

template <auto Free> struct FreeByAddress {
    template <class T> void operator()(T *thing) const { Free(&thing); }
};
using CodecPtr = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using FramePtr = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using PacketPtr = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using Packets = std::vector<PacketPtr>;

void Check(int result)
{
    if (result < 0)
        throw std::runtime_error("a clip cannot be written");
}

/// The same each time.
class Noise
{
public:
    unsigned int Next() { return state_ = state_ * 1664525u + 1013904223u; }

private:
    unsigned int state_ = 1;
};

/// Shades that move, with some noise.
void FillPicture(AVFrame &frame, int number, Noise &noise)
{
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x)
            frame.data[0][y * frame.linesize[0] + x] = static_cast<unsigned char>(
                (x + number * 3) / 2 + y / 3 + static_cast<int>(noise.Next() >> 29));
    for (int plane = 1; plane < 3; ++plane)
        for (int y = 0; y < frame.height / 2; ++y)
            for (int x = 0; x < frame.width / 2; ++x)
                frame.data[plane][y * frame.linesize[plane] + x] =
                    static_cast<unsigned char>((x + number + plane * 50) / 3 + y / 4);
}

void TakePackets(AVCodecContext &encoder, const AVFrame *frame, Packets &packets)
{
    Check(avcodec_send_frame(&encoder, frame));
    for (;;) {
        PacketPtr packet(av_packet_alloc());
        const int result = avcodec_receive_packet(&encoder, packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        Check(result);
        packets.push_back(std::move(packet));
    }
}

CodecPtr OpenVideoEncoder(const ClipShape &shape)
{
    const AVCodec *codec = avcodec_find_encoder_by_name("libx264");
    if (!codec)
        codec = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    CodecPtr encoder(avcodec_alloc_context3(codec));
    encoder->width = shape.width;
    encoder->height = shape.height;
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->time_base = {1, kFrameRate};
    encoder->framerate = {kFrameRate, 1};
    encoder->gop_size = shape.groupSize;
    encoder->max_b_frames = 2;
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (codec->id == AV_CODEC_ID_H264) {
        av_opt_set(encoder->priv_data, "preset", "veryfast", 0);
        const std::string keyFrames = "keyint=" + std::to_string(shape.groupSize) + ":scenecut=0";
        av_opt_set(encoder->priv_data, "x264-params", keyFrames.c_str(), 0);
    }
    Check(avcodec_open2(encoder.get(), codec, nullptr));
    return encoder;
}

Packets EncodeVideo(AVCodecContext &encoder, int frames)
{
    const FramePtr frame(av_frame_alloc());
    frame->format = encoder.pix_fmt;
    frame->width = encoder.width;
    frame->height = encoder.height;
    Check(av_frame_get_buffer(frame.get(), 0));
    Packets packets;
    Noise noise;
    for (int number = 0; number < frames; ++number) {
        Check(av_frame_make_writable(frame.get()));
        FillPicture(*frame, number, noise);
        frame->pts = number;
        TakePackets(encoder, frame.get(), packets);
    }
    TakePackets(encoder, nullptr, packets);
    return packets;
}

CodecPtr OpenAudioEncoder()
{
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    CodecPtr encoder(avcodec_alloc_context3(codec));
    encoder->sample_rate = kSampleRate;
    av_channel_layout_default(&encoder->ch_layout, 2);
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->bit_rate = 96000;
    encoder->time_base = {1, kSampleRate};
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    // Few other encoders leave noise to the decoder to make up.
    av_opt_set_int(encoder->priv_data, "aac_pns", 0, 0);
    Check(avcodec_open2(encoder.get(), codec, nullptr));
    return encoder;
}

Packets EncodeSound(AVCodecContext &encoder, long long samples)
{
    const FramePtr frame(av_frame_alloc());
    frame->format = encoder.sample_fmt;
    frame->nb_samples = encoder.frame_size;
    frame->sample_rate = encoder.sample_rate;
    av_channel_layout_copy(&frame->ch_layout, &encoder.ch_layout);
    Check(av_frame_get_buffer(frame.get(), 0));
    Packets packets;
    for (long long first = 0; first < samples; first += encoder.frame_size) {
        Check(av_frame_make_writable(frame.get()));
        for (int channel = 0; channel < 2; ++channel)
            for (int i = 0; i < encoder.frame_size; ++i)
                reinterpret_cast<float *>(frame->data[channel])[i] =
                    static_cast<float>(0.3 * std::sin(static_cast<double>(first + i) * 0.05 * (channel + 1)));
        frame->pts = first;
        TakePackets(encoder, frame.get(), packets);
    }
    return packets;
}

/// Writes packets that were encoded once as often as a clip is to be long.
class ClipFile
{
public:
    explicit ClipFile(const std::string &path)
    {
        Check(avformat_alloc_output_context2(&format_, nullptr, nullptr, path.c_str()));
        Check(avio_open(&format_->pb, path.c_str(), AVIO_FLAG_WRITE));
    }
    ClipFile(const ClipFile &) = delete;
    ClipFile &operator=(const ClipFile &) = delete;
    ~ClipFile()
    {
        avio_closep(&format_->pb);
        avformat_free_context(format_);
    }

    AVStream *AddStream(const AVCodecContext &encoder)
    {
        AVStream *stream = avformat_new_stream(format_, nullptr);
        Check(avcodec_parameters_from_context(stream->codecpar, &encoder));
        stream->time_base = encoder.time_base;
        return stream;
    }

    void WriteHeader() { Check(avformat_write_header(format_, nullptr)); }
    void WriteTrailer() { Check(av_write_trailer(format_)); }

    void Write(const AVPacket &encoded, const AVStream &stream, AVRational timeBase, long long shift)
    {
        const PacketPtr packet(av_packet_clone(&encoded));
        packet->pts += shift;
        packet->dts += shift;
        if (packet->duration == 0)
            packet->duration = 1;
        packet->stream_index = stream.index;
        av_packet_rescale_ts(packet.get(), timeBase, stream.time_base);
        Check(av_interleaved_write_frame(format_, packet.get()));
    }

private:
    AVFormatContext *format_ = nullptr;
};

void WriteClip(const std::string &path, const ClipShape &shape)
{
    const CodecPtr videoEncoder = OpenVideoEncoder(shape);
    const Packets pictures = EncodeVideo(*videoEncoder, shape.frames);
    const CodecPtr audioEncoder = shape.hasSound ? OpenAudioEncoder() : nullptr;
    const Packets sound =
        audioEncoder ? EncodeSound(*audioEncoder, 1LL * shape.frames * kSampleRate / kFrameRate) : Packets();

    ClipFile file(path);
    const AVStream *video = file.AddStream(*videoEncoder);
    const AVStream *audio = audioEncoder ? file.AddStream(*audioEncoder) : nullptr;
    file.WriteHeader();
    for (int repeat = 0; repeat < shape.repeats; ++repeat) {
        std::size_t written = 0;
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            file.Write(*pictures[i], *video, videoEncoder->time_base, 1LL * repeat * shape.frames);
            const std::size_t due = sound.size() * (i + 1) / pictures.size();
            for (; written < due; ++written)
                file.Write(*sound[written], *audio, audioEncoder->time_base,
                           1LL * repeat * static_cast<long long>(sound.size()) * audioEncoder->frame_size);
        }
    }
    file.WriteTrailer();
}

/// A folder that goes with the program.
class ClipFolder
{
public:
    ClipFolder()
        : path_(fs::temp_directory_path() / ("marlet-bench-" + std::to_string(::getpid()) + ".clips"))
    {
        fs::create_directory(path_);
    }
    ClipFolder(const ClipFolder &) = delete;
    ClipFolder &operator=(const ClipFolder &) = delete;
    ~ClipFolder()
    {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    std::string File(const std::string &name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

std::string NewClip(const std::string &name, const ClipShape &shape)
{
    const std::string path = FileOfClips(name);
    av_log_set_level(AV_LOG_ERROR); // encoders tell how they fared
    WriteClip(path, shape);
    return path;
}

std::vector<std::string> NewShortClips()
{
    constexpr int kCount = 300;
    constexpr ClipShape kShapes[] = {
        {.width = 320, .height = 240, .frames = 50, .hasSound = true},
        {.width = 640, .height = 360, .frames = 50, .groupSize = 25, .hasSound = true},
        {.width = 320, .height = 240, .frames = 100, .groupSize = 50},
        {.width = 160, .height = 120, .frames = 250, .hasSound = true},
    };
    std::vector<std::string> originals;
    for (const ClipShape &shape : kShapes)
        originals.push_back(NewClip("original" + std::to_string(originals.size()) + ".mp4", shape));
    std::vector<std::string> clips;
    for (std::size_t i = 0; i < kCount; ++i) {
        clips.push_back(FileOfClips("short" + std::to_string(i) + ".mp4"));
        fs::copy_file(originals[i % originals.size()], clips.back());
    }
    return clips;
}

std::vector<std::string> NewNames(const std::string &clip, const std::string &stem, int count)
{
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back(FileOfClips(stem + std::to_string(i) + ".mp4"));
        fs::create_hard_link(clip, names.back());
    }
    return names;
}

} // namespace

std::string FileOfClips(const std::string &name)
{
    static const ClipFolder folder;
    return folder.File(name);
}

const std::vector<std::string> &ShortClips()
{
    static const std::vector<std::string> clips = NewShortClips();
    return clips;
}

const std::vector<std::string> &ManyClips()
{
    static const std::vector<std::string> clips = NewNames(ShortClips().front(), "many", 10000);
    return clips;
}

const std::string &HdClip()
{
    static const std::string clip = NewClip(
        "hd.mp4", {.width = kHdWidth, .height = kHdHeight, .frames = kHdFrames, .groupSize = kHdGroup});
    return clip;
}

const std::vector<std::string> &HdClips()
{
    static const std::vector<std::string> clips = NewNames(HdClip(), "hd", 20);
    return clips;
}

const std::string &HourClip()
{
    static const std::string clip = NewClip(
        "hour.mp4",
        {.width = 320, .height = 240, .frames = 250, .repeats = 360, .groupSize = 50, .hasSound = true});
    return clip;
}

} // namespace bench
