#include "Arguments.h"
#include "Failure.h"
#include "Json.h"
#include "MediaFacts.h"
#include "MediaSource.h"
#include "Output.h"

#include <marlet/project/MediaManager.h>

#include <limits>

namespace marlet::tool
{

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const bool isSequence = arguments.Has("--sequence");
    if (arguments.Has("--rate") && !isSequence)
        throw UsageError("--rate goes with --sequence");
    const double rate = arguments.Has("--rate") ? RateOption(arguments, "--rate") : kSequenceRate;

    project::MediaManager manager;
    for (const std::string &file : arguments.Operands()) {
        const MediaPointer media = OpenMedia(manager, file, isSequence, rate);
        if (arguments.Has("--json")) {
            JsonWriter json;
            json.BeginObject().Member("file", file);
            WriteMediaFacts(json, *media);
            output.Line(json.EndObject().Text());
        } else {
            output.Line(OneLine(file));
            for (const std::string &line : MediaFactLines(*media))
                output.Line("  " + line);
        }
    }
}

} // namespace

const CommandSpec &MediaCommand()
{
    static const CommandSpec command{"media",
                                     "what the library sees in video and audio files",
                                     "FILE... [--sequence [--rate R]] [--json]",
                                     1,
                                     std::numeric_limits<std::size_t>::max(),
                                     {{"--sequence", "", "take each FILE for a member of an image sequence"},
                                      {"--rate", "R", "frames per second of the sequences; 25 if not given"},
                                      {"--json", "", "one JSON object a line"}},
                                     Run,
                                     "media clip.mov"};
    return command;
}

} // namespace marlet::tool
