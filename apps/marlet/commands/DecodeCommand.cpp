#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/ImageFile.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/TextFile.h"

#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>

#include <boost/smart_ptr/shared_array.hpp>

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

/// Which frame it is, and in which of the ways it is asked for.
struct Wish {
    int frame = 0;
    bool hasRate = false;
    double rate = 0;
    bool isLimited = false;
    PixelSize within;
};

Wish ParseWish(const Arguments &arguments)
{
    Wish wish;
    wish.frame = arguments.Integer("--frame");
    wish.hasRate = arguments.Has("--rate");
    if (wish.hasRate)
        wish.rate = RateOption(arguments, "--rate");
    wish.isLimited = arguments.Has("--size");
    if (wish.isLimited)
        wish.within = arguments.Size("--size");
    return wish;
}

Frame ReadFrame(const MediaVideoStream &video, const Wish &wish)
{
    constexpr KyImageChannels kChannels = KyImageChannels::Four;
    const int size = video.FrameBufferSize(kChannels);
    Frame frame{boost::shared_array<unsigned char>(new unsigned char[static_cast<std::size_t>(size)]),
                video.Width(), video.Height()};
    if (wish.isLimited) {
        const double rate = wish.hasRate ? wish.rate : video.FrameRate();
        boost::shared_array<unsigned char> scratch;
        unsigned int scratchSize = 0;
        frame.code =
            video.GetFrame(rate, wish.frame, wish.within.width, wish.within.height, scratch, scratchSize,
                           frame.pixels, static_cast<unsigned int>(size), &frame.width, &frame.height, 0);
    } else if (wish.hasRate) {
        frame.code = video.GetFrame(wish.rate, wish.frame, kChannels, frame.pixels.get(), size, nullptr, 0);
    } else {
        frame.code = video.GetFrame(wish.frame, kChannels, frame.pixels.get(), size, nullptr, 0);
    }
    return frame;
}

void Run(const Arguments &arguments, Output &output)
{
    const Wish wish = ParseWish(arguments);
    const std::string &out = arguments.NewPath("-o");
    const MediaSource source = OpenMediaSource(arguments);
    const auto video = VideoOf(*source.media);
    const Frame frame = ReadFrame(*video, wish);
    RequireSuccess(*source.media, frame.code, "Frame " + std::to_string(wish.frame));
    WriteFile(out, EncodePng({frame.pixels.get(), static_cast<std::size_t>(frame.width),
                              static_cast<std::size_t>(frame.height), true}));
    if (arguments.Has("--json"))
        output.Line(JsonWriter()
                        .BeginObject()
                        .Member("file", source.media->Filename())
                        .Member("frame", wish.frame)
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
        Run,
        "decode clip.mov --frame 50 -o frame.png"};
    return command;
}

} // namespace marlet::tool
