#include "encode/Encoder.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "samples/TestClip.h"

namespace marlet::tool
{

namespace
{

std::string PositionText(int frame, const TestClip::Position &position)
{
    return "frame " + std::to_string(frame) + "  " + NumberText(static_cast<float>(position.x)) + "," +
           NumberText(static_cast<float>(position.y));
}

std::string PositionJson(int frame, const TestClip::Position &position)
{
    JsonWriter json;
    json.BeginObject().Member("frame", frame).Member("x", position.x).Member("y", position.y);
    return json.EndObject().Text();
}

void Encode(const std::string &path, const TestClip &clip, int frames, bool hasSound)
{
    EncoderOptions options;
    options.width = clip.Width();
    options.height = clip.Height();
    options.frameRate = {TestClip::kFramesPerSecond, 1};
    options.sampleRate = hasSound ? TestClip::kSampleRate : 0;
    options.channels = TestClip::kChannels;
    RequireWritable(path);
    const Interruption interruption;
    Encoder encoder(path, options);
    for (int frame = 0; frame < frames; ++frame) {
        if (interruption.Requested())
            throw Failure(path, "Interrupted");
        encoder.AddFrame(clip.Picture(frame).data(), 4 * clip.Width());
        if (hasSound) {
            const auto sound = clip.Sound(frame);
            encoder.AddSamples(sound.data(), static_cast<int>(sound.size()) / TestClip::kChannels);
        }
    }
    encoder.Finish();
}

void Run(const Arguments &arguments, Output &output)
{
    constexpr PixelSize kSize{640, 360};
    constexpr int kFrames = 100;
    const PixelSize size = arguments.Has("--size") ? arguments.Size("--size", Encoder::kLongestSide) : kSize;
    const int frames = arguments.Has("--frames") ? arguments.Integer("--frames") : kFrames;
    if (frames < 1)
        throw UsageError("--frames: at least one is needed");

    const TestClip clip(size.width, size.height);
    Encode(arguments.Operand(0), clip, frames, !arguments.Has("--silent"));
    for (int frame = 0; frame < frames; ++frame)
        output.Line((arguments.Has("--json") ? PositionJson : PositionText)(frame, clip.PathAt(frame)));
}

} // namespace

const CommandSpec &ClipCommand()
{
    static const CommandSpec command{
        "clip",
        "make a clip to test tracking with: a patch of texture on a path, which is printed",
        "OUT.mov [--frames N] [--size WxH] [--silent] [--json]",
        1,
        1,
        {{"--frames", "N", "the length; 100 if not given, at 25 frames per second"},
         {"--size", "WxH", "the size of the picture; 640x360 if not given"},
         {"--silent", "", "leave out the sound"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "clip clip.mov --frames 100"};
    return command;
}

} // namespace marlet::tool
