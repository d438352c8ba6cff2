#pragma once

#include <marlet/platform/media/LibavHandles.h>
#include <marlet/platform/media/files/FileSource.h>

#include <initializer_list>
#include <string>

namespace kyh::media
{

/// Libav's reader of a container over an open file. Nothing but that file is read, whatever it refers to.
/// Not for several threads at once.
class Demuxer
{
public:
    /// Recognises the container. @throws MediaFailure
    explicit Demuxer(FileSourcePtr source);

    /// Whether the file is a picture rather than a container of streams.
    bool IsStill() const { return isStill_; }
    /// What a picture is compressed with.
    AVCodecID StillCodec() const;

    /// Reads what the container says of its streams. @throws MediaFailure
    void OpenStreams();
    AVFormatContext &Format() { return *format_; }
    AVStream &Stream(int index) { return *format_->streams[index]; }
    /// Packets of other streams are left out.
    void Select(std::initializer_list<int> streams);
    /// False at the end, which is where the content is too damaged to go on as well.
    /// @throws MediaFailure if the file is no longer what it was
    bool Read(AVPacket &packet);
    /// Goes to the key frame at or before a time in the stream's units, or in those of libav for stream -1.
    bool Seek(int stream, std::int64_t time);
    /// Goes to the last packet that is decoded at or before a time in the stream's units.
    bool SeekToPacket(int stream, std::int64_t time);

private:
    static int ReadBytes(void *self, unsigned char *bytes, int size);
    static std::int64_t SeekBytes(void *self, std::int64_t offset, int whence);
    void OpenFormat();
    [[noreturn]] void Fail(int code) const;

    FileSourcePtr source_;
    std::string name_; ///< that libav is told
    int failure_ = 0;  ///< of the source, which libav's own codes do not tell
    std::int64_t position_ = 0;
    InputPtr input_; // behind the format, which reads from it
    const AVInputFormat *container_ = nullptr;
    bool isStill_ = false;
    FormatPtr format_;
};

} // namespace kyh::media
