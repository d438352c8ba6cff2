#include <marlet/platform/media/files/Demuxer.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace kyh::media
{

namespace
{

constexpr int kInputBuffer = 1 << 16;

/// Parsers and readers report to the terminal through one level for the whole process and have none of
/// their own. It is left alone where the host has set it.
void Quieten()
{
    [[maybe_unused]] static const bool quiet = [] {
        if (av_log_get_level() == AV_LOG_INFO)
            av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
}

int RefuseOtherFile(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EPERM);
}

bool IsPicture(std::string_view container)
{
    return container == "image2" || container.ends_with("_pipe");
}

/// The name without its folder, since some containers are known by the ending alone.
const char *NameOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    return path.c_str() + (slash == std::string::npos ? 0 : slash + 1);
}

} // namespace

int Demuxer::ReadBytes(void *self, unsigned char *bytes, int size)
{
    Demuxer &demuxer = *static_cast<Demuxer *>(self);
    const std::int64_t count =
        demuxer.source_->Read(demuxer.position_, bytes, static_cast<std::size_t>(size));
    if (count < 0)
        return AVERROR(EIO);
    demuxer.position_ += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t Demuxer::SeekBytes(void *self, std::int64_t offset, int whence)
{
    Demuxer &demuxer = *static_cast<Demuxer *>(self);
    const std::int64_t size = demuxer.source_->Size();
    if (whence & AVSEEK_SIZE)
        return size < 0 ? AVERROR(EIO) : size;
    switch (whence & ~AVSEEK_FORCE) {
    case SEEK_SET:
        break;
    case SEEK_CUR:
        offset += demuxer.position_;
        break;
    case SEEK_END:
        offset += size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (offset < 0)
        return AVERROR(EINVAL);
    return demuxer.position_ = offset;
}

Demuxer::Demuxer(FileSourcePtr source) : source_(std::move(source))
{
    Quieten();
    auto *buffer = static_cast<unsigned char *>(av_malloc(kInputBuffer));
    if (!buffer)
        throw std::bad_alloc();
    input_.reset(avio_alloc_context(buffer, kInputBuffer, 0, this, ReadBytes, nullptr, SeekBytes));
    if (!input_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    if (source_->Size() == 0 ||
        av_probe_input_buffer2(input_.get(), &container_, NameOf(source_->Path()), nullptr, 0, 0) < 0)
        throw MediaFailure{kUnknownFormat};
    const std::string_view name = container_->name;
    // By its ending, any text passes for what a terminal would show.
    if (name == "tty")
        throw MediaFailure{kUnknownFormat};
    isStill_ = IsPicture(name);
}

AVCodecID Demuxer::StillCodec() const
{
    // Only the endings tell what the general container of pictures holds.
    if (std::string_view(container_->name) == "image2") {
        const AVOutputFormat *pictures = av_guess_format("image2", nullptr, nullptr);
        return pictures
                   ? av_guess_codec(pictures, nullptr, NameOf(source_->Path()), nullptr, AVMEDIA_TYPE_VIDEO)
                   : AV_CODEC_ID_NONE;
    }
    return format_ && format_->nb_streams > 0 ? format_->streams[0]->codecpar->codec_id : AV_CODEC_ID_NONE;
}

void Demuxer::OpenFormat()
{
    AVFormatContext *format = avformat_alloc_context();
    if (!format)
        throw std::bad_alloc();
    format->pb = input_.get();
    // Some containers ask through here for what they refer to, others by the name of a protocol.
    format->io_open = RefuseOtherFile;
    format->protocol_whitelist = av_strdup("");
    // A format that does not open is freed.
    RequireContent(avformat_open_input(&format, NameOf(source_->Path()), container_, nullptr));
    format_.reset(format);
}

void Demuxer::OpenStreams()
{
    if (isStill_) {
        if (std::string_view(container_->name) != "image2")
            OpenFormat();
        return;
    }
    OpenFormat();
    RequireContent(avformat_find_stream_info(format_.get(), nullptr));
}

void Demuxer::Select(std::initializer_list<int> streams)
{
    for (int i = 0; i < static_cast<int>(format_->nb_streams); ++i) {
        const bool isSelected = std::find(streams.begin(), streams.end(), i) != streams.end();
        format_->streams[i]->discard = isSelected ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

bool Demuxer::Read(AVPacket &packet)
{
    av_packet_unref(&packet);
    return av_read_frame(format_.get(), &packet) >= 0;
}

bool Demuxer::Seek(int stream, std::int64_t time)
{
    return av_seek_frame(format_.get(), stream, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

} // namespace kyh::media
