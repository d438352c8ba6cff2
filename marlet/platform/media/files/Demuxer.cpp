#include <marlet/platform/media/files/Demuxer.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

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

/// Libav decodes some frames to learn of a stream. Nobody sees them, so their edges need not be smoothed.
int FindStreamInfo(AVFormatContext &format)
{
    std::vector<AVDictionary *> options(format.nb_streams);
    for (AVDictionary *&ofStream : options)
        av_dict_set(&ofStream, "skip_loop_filter", "all", 0);
    const int result = avformat_find_stream_info(&format, options.data());
    for (AVDictionary *&ofStream : options)
        av_dict_free(&ofStream);
    return result;
}

bool IsPicture(std::string_view container)
{
    return container == "image2" || container.ends_with("_pipe");
}

/// Some containers are known by their ending alone. The rest of a name libav may take for a pattern.
std::string NameFor(const std::string &path)
{
    const std::size_t end = path.find_last_of("./");
    const std::string ending =
        end != std::string::npos && path[end] == '.' ? path.substr(end) : std::string();
    const bool isPlain = ending.find_first_of("*?{%") == std::string::npos;
    return "media" + (isPlain ? ending : std::string());
}

} // namespace

int Demuxer::ReadBytes(void *self, unsigned char *bytes, int size)
{
    Demuxer &demuxer = *static_cast<Demuxer *>(self);
    std::int64_t count = 0;
    demuxer.failure_ = CodeOf(
        [&] { count = demuxer.source_->Read(demuxer.position_, bytes, static_cast<std::size_t>(size)); });
    if (demuxer.failure_ != kSuccess || count < 0)
        return AVERROR(EIO);
    demuxer.position_ += count;
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t Demuxer::SeekBytes(void *self, std::int64_t offset, int whence)
{
    Demuxer &demuxer = *static_cast<Demuxer *>(self);
    const std::int64_t size = demuxer.source_->Size();
    if (whence & AVSEEK_SIZE)
        return size;
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

Demuxer::Demuxer(FileSourcePtr source) : source_(std::move(source)), name_(NameFor(source_->Path()))
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
        av_probe_input_buffer2(input_.get(), &container_, name_.c_str(), nullptr, 0, 0) < 0)
        Fail(kUnknownFormat);
    const std::string_view name = container_->name;
    // By its ending, any text passes for what a terminal would show.
    if (name == "tty")
        throw MediaFailure{kUnknownFormat};
    isStill_ = IsPicture(name);
}

void Demuxer::Fail(int code) const
{
    throw MediaFailure{failure_ != kSuccess ? failure_ : code};
}

AVCodecID Demuxer::StillCodec() const
{
    // Only the endings tell what the general container of pictures holds.
    if (std::string_view(container_->name) == "image2") {
        const AVOutputFormat *pictures = av_guess_format("image2", nullptr, nullptr);
        return pictures ? av_guess_codec(pictures, nullptr, name_.c_str(), nullptr, AVMEDIA_TYPE_VIDEO)
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
    if (avformat_open_input(&format, name_.c_str(), container_, nullptr) < 0)
        Fail(kDamaged);
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
    if (FindStreamInfo(*format_) < 0)
        Fail(kDamaged);
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
    const bool isRead = av_read_frame(format_.get(), &packet) >= 0;
    if (!isRead && failure_ != kSuccess)
        Fail(failure_);
    return isRead;
}

bool Demuxer::Seek(int stream, std::int64_t time)
{
    return av_seek_frame(format_.get(), stream, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool Demuxer::SeekToPacket(int stream, std::int64_t time)
{
    return av_seek_frame(format_.get(), stream, time, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY) >= 0;
}

} // namespace kyh::media
