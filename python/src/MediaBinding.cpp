#include "Bindings.h"
#include "FrameBuffers.h"
#include "Handles.h"
#include "Values.h"

#include <marlet/operations/assets/MediaImport.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>

#include <boost/shared_array.hpp>

#include <limits>

namespace marlet::python
{

namespace
{

using kyh::media::KyImageChannels;
using Status = MediaAsset::Status;

const Words<Status> kStatuses{{Status::Usable, "usable"},
                              {Status::Missing, "missing"},
                              {Status::Unreadable, "unreadable"},
                              {Status::Failed, "failed"}};

void RequireSuccess(int code, const char *what)
{
    namespace media = kyh::media;
    if (code == media::kSuccess)
        return;
    const std::string reason = code == media::kOutOfRange ? "the file has none there"
                               : code == media::kDamaged  ? "the file is damaged"
                               : code == media::kAsleep   ? "the file was put aside"
                               : code == media::kNotFound ? "the file is missing"
                                                          : "code " + std::to_string(code);
    throw Failure("MediaError", std::string(what) + " cannot be decoded: " + reason);
}

std::shared_ptr<MediaVideoStream> VideoOf(const MediaAsset &asset)
{
    auto stream = asset.VideoStream();
    if (!stream)
        throw Failure("MediaError", asset.IsOffline() ? "The file is offline" : "The file has no picture");
    return stream;
}

std::shared_ptr<MediaAudioStream> SoundOf(const MediaAsset &asset)
{
    auto stream = asset.AudioStream();
    if (!stream)
        throw Failure("MediaError", asset.IsOffline() ? "The file is offline" : "The file has no sound");
    return stream;
}

py::array Frame(const MediaHandle &handle, int number, std::optional<double> rate, const std::string &order)
{
    // These outlive the decoding, whatever another thread does to the project meanwhile.
    const auto project = handle.InProject();
    const auto asset = handle.Get();
    const KyImageChannels channels = order == "rgb" ? KyImageChannels::Three : KyImageChannels::Four;
    if (order != "rgb" && order != "bgra")
        throw py::value_error("'" + order + "' is none of 'bgra', 'rgb'");
    std::unique_ptr<FrameBuffer> buffer;
    py::ssize_t width = 0;
    py::ssize_t height = 0;
    {
        const py::gil_scoped_release release;
        const auto stream = VideoOf(*asset);
        width = stream->Width();
        height = stream->Height();
        const int size = stream->FrameBufferSize(channels);
        buffer = std::make_unique<FrameBuffer>(static_cast<std::size_t>(size));
        const int code = rate ? stream->GetFrame(*rate, number, channels, buffer->Data(), size, nullptr, 0)
                              : stream->GetFrame(number, channels, buffer->Data(), size, nullptr, 0);
        RequireSuccess(code, "The frame");
    }
    unsigned char *const pixels = buffer->Data();
    return py::array_t<unsigned char>({height, width, py::ssize_t{order == "rgb" ? 3 : 4}}, pixels,
                                      Keeping(std::move(buffer)));
}

template <class Sample>
py::array SamplesAs(const MediaAsset &asset, const MediaAudioStream &stream, long long start, int count)
{
    const int channels = stream.ChannelCount();
    py::array_t<Sample> samples({py::ssize_t{count}, py::ssize_t{channels}});
    const long long bytes = static_cast<long long>(count) * channels * static_cast<long long>(sizeof(Sample));
    if (bytes > std::numeric_limits<int>::max())
        throw py::value_error("These are too many samples at once");
    auto *const to = reinterpret_cast<unsigned char *>(samples.mutable_data());
    int code = 0;
    {
        const py::gil_scoped_release release;
        code = stream.GetSamples(start, count, to, static_cast<int>(bytes), nullptr);
    }
    RequireSuccess(code, asset.IsOffline() ? "The sound of an offline file" : "The sound");
    return samples;
}

py::array Samples(const MediaHandle &handle, long long start, int count)
{
    const auto project = handle.InProject();
    const auto asset = handle.Get();
    const auto stream = SoundOf(*asset);
    if (count < 0)
        throw py::value_error("There is no negative number of samples");
    return stream->BitsPerSample() > 16 ? SamplesAs<int>(*asset, *stream, start, count)
                                        : SamplesAs<short>(*asset, *stream, start, count);
}

py::array Picture(const ImageHandle &handle, int maxWidth, int maxHeight)
{
    const auto asset = handle.Get();
    auto pixels = std::make_unique<boost::shared_array<unsigned char>>();
    int width = 0;
    int height = 0;
    int bits = 0;
    unsigned int code = 0;
    {
        const py::gil_scoped_release release;
        bits = asset->PixelBitCount();
        code = asset->ReadPixelData(maxWidth > 0 ? maxWidth : asset->Width(),
                                    maxHeight > 0 ? maxHeight : asset->Height(), *pixels, &width, &height);
    }
    if (code != 0 || bits == 0)
        throw Failure("MediaError", "The image cannot be read");
    const py::ssize_t channels = bits / 8;
    const py::ssize_t row = (width * channels + 3) / 4 * 4;
    unsigned char *const first = pixels->get();
    return py::array_t<unsigned char>({py::ssize_t{height}, py::ssize_t{width}, channels},
                                      {row, channels, py::ssize_t{1}}, first, Keeping(std::move(pixels)));
}

/// A fact of a stream, or nothing if the file has no such stream.
template <class Stream, class Read>
void StreamFact(py::class_<MediaHandle, AssetHandle> &type, const char *name,
                std::shared_ptr<Stream> (MediaAsset::*streamOf)() const, Read read, const char *help)
{
    using Value = decltype(read(std::declval<const Stream &>()));
    type.def_property_readonly(
        name,
        [streamOf, read](const MediaHandle &asset) -> std::optional<Value> {
            const auto stream = (*asset.Get().*streamOf)();
            return stream ? std::optional<Value>(read(*stream)) : std::nullopt;
        },
        help);
}

void BindStreams(py::class_<MediaHandle, AssetHandle> &type)
{
    using Video = MediaVideoStream;
    using Sound = MediaAudioStream;
    StreamFact(
        type, "frame_count", &MediaAsset::VideoStream, [](const Video &video) { return video.FrameCount(); },
        "At the file's own rate; None without a picture.");
    StreamFact(
        type, "frame_rate", &MediaAsset::VideoStream, [](const Video &video) { return video.FrameRate(); },
        "Frames per second; None without a picture.");
    StreamFact(
        type, "sample_rate", &MediaAsset::AudioStream, [](const Sound &sound) { return sound.SampleRate(); },
        "In hertz; None without sound.");
    StreamFact(
        type, "sample_count", &MediaAsset::AudioStream,
        [](const Sound &sound) { return sound.SampleCount(); }, "Of each channel; None without sound.");
    StreamFact(
        type, "channel_count", &MediaAsset::AudioStream,
        [](const Sound &sound) { return static_cast<int>(sound.ChannelCount()); }, "None without sound.");
    type.def(
        "frame", &Frame, py::arg("number"), py::kw_only(), py::arg("rate") = py::none(),
        py::arg("order") = "bgra",
        "A frame as an array of rows, columns and four bytes (blue, green, red, alpha), or of three (red, "
        "green, blue) in the order 'rgb'. Counts at the file's own rate, or at the rate of a project. The "
        "array is written by the decoder itself and belongs to the caller. Other threads of Python run "
        "meanwhile.");
    type.def("samples", &Samples, py::arg("start"), py::arg("count"),
             "Sound as an array of samples and channels, of 16 or 32 bits. What lies outside of the file "
             "is silence.");
}

void Relink(const MediaHandle &asset, const WideString &path)
{
    const auto relinked = asset.Get();
    Operate(*asset.Owner(), [&](const auto &project) { RelinkAsset(project, relinked, path); });
}

} // namespace

void BindMedia(py::module_ &module)
{
    py::class_<MediaHandle, AssetHandle> media(module, "MediaAsset",
                                               "A video file, an audio file or an image sequence.");
    BindFact<MediaHandle>(
        media, "path", [](const MediaAsset &asset) { return asset.Filename(); }, "The file.");
    BindFact<MediaHandle>(
        media, "status", [](const MediaAsset &asset) { return kStatuses.Of(asset.MediaFileStatus()); },
        "'usable', 'missing', 'unreadable' or 'failed'.");
    BindFact<MediaHandle>(
        media, "is_image_sequence", [](const MediaAsset &asset) { return asset.IsImageSequence(); },
        "Whether it is one of many images.");
    BindStreams(media);
    media.def("relink", &Relink, py::arg("path"), "Points it at another file, which need not be there.");

    py::class_<ImageHandle, AssetHandle> image(module, "ImageAsset", "A still image.");
    BindFact<ImageHandle>(
        image, "path", [](const ImageAsset &asset) { return asset.Filename(); }, "The file.");
    image.def("picture", &Picture, py::kw_only(), py::arg("max_width") = 0, py::arg("max_height") = 0,
              "The picture as an array of rows, columns and four bytes (blue, green, red, alpha), or of "
              "three (red, green, blue) if it has no alpha, scaled down to fit into a size.");
}

} // namespace marlet::python
