#include "document/MediaFacts.h"
#include "document/MediaOpening.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/project/MediaManager.h>

#include <limits>
#include <optional>

namespace marlet::tool
{

using namespace project;

namespace
{

void WriteFacts(const std::string &file, const MediaAsset &media, bool json, Output &output)
{
    if (json) {
        JsonWriter line;
        line.BeginObject().Member("file", file);
        WriteMediaFacts(line, media);
        output.Line(line.EndObject().Text());
        return;
    }
    output.Line(OneLine(file));
    for (const std::string &line : MediaFactLines(media))
        output.Line("  " + line);
}

std::string CountsText(long long count, const char *what, int packets)
{
    return std::to_string(count) + " " + what + " in " + std::to_string(packets) + " packets";
}

void WriteKeptText(const std::optional<KeptMedia> &kept, Output &output)
{
    if (!kept)
        return output.Line("  there is no cache folder");
    const std::string place = OneLine(ToUtf8(kept->place));
    if (!kept->isKept)
        return output.Line("  nothing is kept; it would be in " + place);
    output.Line("  kept     " + std::to_string(kept->bytes) + " bytes in " + place);
    if (kept->framePackets > 0)
        output.Line("  video    " + CountsText(kept->frames, "frames", kept->framePackets));
    if (kept->samplePackets > 0)
        output.Line("  audio    " + CountsText(kept->samples, "samples", kept->samplePackets));
}

void WriteKept(const std::string &file, const std::optional<KeptMedia> &kept, bool json, Output &output)
{
    if (!json) {
        output.Line(OneLine(file));
        return WriteKeptText(kept, output);
    }
    const KeptMedia shown = kept.value_or(KeptMedia());
    JsonWriter line;
    line.BeginObject().Member("file", file).Member("kept", shown.isKept).Member("place", shown.place);
    line.Member("bytes", static_cast<unsigned long>(shown.bytes))
        .Member("frames", shown.frames)
        .Member("frame_packets", shown.framePackets)
        .Member("samples", static_cast<unsigned long>(shown.samples))
        .Member("sample_packets", shown.samplePackets);
    output.Line(line.EndObject().Text());
}

std::vector<MediaPointer> OpenFiles(MediaManager &manager, const std::vector<std::string> &files)
{
    std::vector<WideString> paths;
    for (const std::string &file : files)
        paths.push_back(FromUtf8(file));
    MediaOpening opening;
    std::vector<MediaPointer> media = manager.CreateMediaAssets(paths, &opening);
    opening.RequireNotInterrupted();
    return media;
}

void Run(const Arguments &arguments, Output &output)
{
    const bool isSequence = arguments.Has("--sequence");
    if (arguments.Has("--rate") && !isSequence)
        throw UsageError("--rate goes with --sequence");
    const double rate = arguments.Has("--rate") ? RateOption(arguments, "--rate") : kSequenceRate;

    const bool json = arguments.Has("--json");
    const MediaManagerPointer manager = NewMediaManager();
    const std::vector<std::string> &files = arguments.Operands();
    if (arguments.Has("--index")) {
        if (isSequence)
            throw UsageError("--index and --sequence exclude each other");
        for (const std::string &file : files)
            WriteKept(file, manager->KeptOf(FromUtf8(file)), json, output);
        return;
    }
    std::vector<MediaPointer> media;
    if (!isSequence)
        media = OpenFiles(*manager, files);
    for (std::size_t i = 0; i < files.size(); ++i)
        WriteFacts(files[i], isSequence ? *OpenMedia(*manager, files[i], true, rate) : *media[i], json,
                   output);
}

} // namespace

const CommandSpec &MediaCommand()
{
    static const CommandSpec command{
        "media",
        "what the library sees in video and audio files",
        "FILE... [--sequence [--rate R] | --index] [--json]",
        1,
        std::numeric_limits<std::size_t>::max(),
        {{"--sequence", "", "take each FILE for a member of an image sequence"},
         {"--rate", "R", "frames per second of the sequences; 25 if not given"},
         {"--index", "", "what the cache folder keeps of each FILE, and where, instead of opening it"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "media clip.mov"};
    return command;
}

} // namespace marlet::tool
