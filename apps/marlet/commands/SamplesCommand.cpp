#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "output/WavFile.h"

#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>

#include <vector>

namespace marlet::tool
{

using namespace project;

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const int start = arguments.Integer("--start");
    const int count = arguments.Integer("--count");
    if (count < 1)
        throw UsageError("--count: at least one is needed");
    const std::string &out = arguments.NewPath("-o");

    const MediaSource source = OpenMediaSource(arguments);
    const auto audio = AudioOf(*source.media);
    const std::size_t bytesPerMoment = audio->ChannelCount() * (audio->BitsPerSample() / 8u);
    if (static_cast<std::size_t>(count) > kMostWavBytes / bytesPerMoment)
        throw Failure(std::to_string(count) + " samples are more than fit into a WAV file");

    std::vector<unsigned char> bytes(static_cast<std::size_t>(count) * bytesPerMoment);
    int inside = 0;
    RequireSuccess(*source.media,
                   audio->GetSamples(start, count, bytes.data(), static_cast<int>(bytes.size()), &inside),
                   "Samples from " + std::to_string(start));
    WriteFile(out, EncodeWav({bytes.data(), bytes.size(), audio->SampleRate(), audio->ChannelCount(),
                              audio->BitsPerSample()}));
    if (arguments.Has("--json"))
        output.Line(JsonWriter()
                        .BeginObject()
                        .Member("file", source.media->Filename())
                        .Member("start", start)
                        .Member("count", count)
                        .Member("inside", inside)
                        .EndObject()
                        .Text());
}

} // namespace

const CommandSpec &SamplesCommand()
{
    static const CommandSpec command{
        "samples",
        "write samples of a file's sound as a WAV file",
        "PROJECT|MEDIA --start S --count C -o OUT.wav [--asset A] [--json]",
        1,
        1,
        {{"--start", "S", "the first sample; before the start and behind the end is silence"},
         {"--count", "C", "how many samples of each channel"},
         {"-o", "OUT.wav", "where to write them"},
         {"--asset", "A", "the media asset of the project, by ID or name; not needed for the only one"},
         {"--json", "", "tell as one JSON object how many of them lie inside the file"}},
        Run,
        "samples clip.mov --start 0 --count 48000 -o sound.wav"};
    return command;
}

} // namespace marlet::tool
