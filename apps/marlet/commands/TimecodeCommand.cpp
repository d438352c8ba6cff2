#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/foundation/TimeCode.h>

namespace marlet::tool
{

using namespace project;

namespace
{

/// Beyond it the frames of an hour are more than an int can count.
constexpr double kHighestRate = 100000;

TimeCode AskedTimeCode(const Arguments &arguments, double rate)
{
    if (arguments.Has("--frame"))
        return TimeCode::FromFrame(arguments.Integer("--frame"), rate);
    const std::string &text = arguments.Text("--text");
    TimeCode timeCode;
    if (!TimeCode::FromString(FromUtf8(text).c_str(), rate, timeCode))
        throw Failure(text, "Not a time code, such as 01:02:03:04");
    return timeCode;
}

std::string TimeCodeJson(const TimeCode &timeCode)
{
    JsonWriter json;
    json.BeginObject()
        .Member("text", timeCode.ToString())
        .Member("frame", timeCode.ToFrame())
        .Member("rate", timeCode.frameRate)
        .Member("drop", TimeCode::IsDropTimeCode(timeCode.frameRate))
        .Member("negative", timeCode.negative)
        .Member("hours", timeCode.hours)
        .Member("minutes", timeCode.minutes)
        .Member("seconds", timeCode.seconds)
        .Member("frames", timeCode.frames)
        .Member("total_seconds", timeCode.TotalSeconds())
        .EndObject();
    return json.Text();
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--frame") == arguments.Has("--text"))
        throw UsageError("either --frame or --text is needed, not both");
    const double rate = arguments.Real("--rate");
    if (rate <= 0 || rate > kHighestRate)
        throw UsageError("--rate: \"" + arguments.Text("--rate") + "\" is no frame rate");
    const TimeCode timeCode = AskedTimeCode(arguments, rate);
    if (arguments.Has("--json"))
        output.Line(TimeCodeJson(timeCode));
    else
        output.Line(timeCode.ToString() + "  frame " + std::to_string(timeCode.ToFrame()) + " at " +
                    NumberText(timeCode.frameRate) + " frames per second" +
                    (TimeCode::IsDropTimeCode(timeCode.frameRate) ? ", drop-frame" : ""));
}

} // namespace

const CommandSpec &TimecodeCommand()
{
    static const CommandSpec command{"timecode",
                                     "a frame number as a time code, or the other way round",
                                     "(--frame N | --text T) --rate R [--json]",
                                     0,
                                     0,
                                     {{"--frame", "N", "a frame number"},
                                      {"--text", "T", "a time code, such as 01:02:03:04"},
                                      {"--rate", "R", "frames per second, such as 29.97"},
                                      {"--json", "", "a JSON object"}},
                                     Run,
                                     "timecode --frame 1800 --rate 29.97"};
    return command;
}

} // namespace marlet::tool
