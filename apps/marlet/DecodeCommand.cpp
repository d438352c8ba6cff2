#include "Arguments.h"
#include "Json.h"
#include "MediaSource.h"
#include "Output.h"
#include "PngFile.h"
#include "TextFile.h"

#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>

#include <boost/smart_ptr/shared_array.hpp>

#include <optional>

namespace marlet::tool
{

using namespace project;
using kyh::media::KyImageChannels;

namespace
{

struct Frame {
    boost::shared_array<unsigned char> pixels;
    int width = 0;
    int height = 0;
    int code = 0;
};

/// Which of the ways to ask for a frame it is follows from what is given.
Frame ReadFrame(const MediaVideoStream &video, int frame, const std::optional<double> &rate,
                const std::optional<PixelSize> &within)
{
    const int size = video.FrameBufferSize(KyImageChannels::Four);
    Frame read{boost::shared_array<unsigned char>(new unsigned char[static_cast<std::size_t>(size)]),
               video.Width(), video.Height()};
    if (within) {
        boost::shared_array<unsigned char> scratch;
        unsigned int scratchSize = 0;
        read.code = video.GetFrame(rate.value_or(video.FrameRate()), frame, within->width, within->height,
                                   scratch, scratchSize, read.pixels, static_cast<unsigned int>(size),
                                   &read.width, &read.height, 0);
    } else if (rate) {
        read.code = video.GetFrame(*rate, frame, KyImageChannels::Four, read.pixels.get(), size, nullptr, 0);
    } else {
        read.code = video.GetFrame(frame, KyImageChannels::Four, read.pixels.get(), size, nullptr, 0);
    }
    return read;
}

void Run(const Arguments &arguments, Output &output)
{
    const int number = arguments.Integer("--frame");
    const std::string &out = arguments.Text("-o");
    const auto rate = arguments.Has("--rate") ? std::optional(RateOption(arguments, "--rate")) : std::nullopt;
    const auto within = arguments.Has("--size") ? std::optional(arguments.Size("--size")) : std::nullopt;

    const MediaSource source = OpenMediaSource(arguments);
    const auto video = VideoOf(*source.media);
    const Frame frame = ReadFrame(*video, number, rate, within);
    RequireSuccess(*source.media, frame.code, "Frame " + std::to_string(number));
    WriteFile(out, EncodePng({frame.pixels.get(), static_cast<std::size_t>(frame.width),
                              static_cast<std::size_t>(frame.height), true}));
    if (arguments.Has("--json"))
        output.Line(JsonWriter()
                        .BeginObject()
                        .Member("file", source.media->Filename())
                        .Member("frame", number)
                        .Member("width", frame.width)
                        .Member("height", frame.height)
                        .EndObject()
                        .Text());
}

} // namespace

const CommandSpec &DecodeCommand()
{
    static const CommandSpec command{
        "decode",
        "write a frame of a video file as a picture",
        "PROJECT|MEDIA --frame N -o OUT.png [--asset A] [--rate R] [--size WxH]\n"
        "[--sequence] [--json]",
        1,
        1,
        {{"--frame", "N", "the frame, counted at the file's own rate"},
         {"-o", "OUT.png", "where to write it"},
         {"--asset", "A", "the media asset of the project, by ID or name; not needed for the only one"},
         {"--rate", "R", "count the frame at a rate of R frames per second instead"},
         {"--size", "WxH", "scale it down to fit into a size if it is larger"},
         {"--sequence", "", "MEDIA is a member of an image sequence of 25 frames per second"},
         {"--json", "", "tell of the frame as one JSON object"}},
        Run};
    return command;
}

} // namespace marlet::tool
