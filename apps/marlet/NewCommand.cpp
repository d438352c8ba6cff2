#include "Arguments.h"
#include "Document.h"
#include "ExampleProject.h"
#include "Failure.h"
#include "TitlesProject.h"

#include <marlet/project/Project.h>

namespace marlet::tool
{

using project::AudioVideoSettings;

namespace
{

void Run(const Arguments &arguments, Output &)
{
    constexpr int kLastPreset = static_cast<int>(AudioVideoSettings::Preset::DvcproHd1080At2997);
    constexpr int kFrames = 250;
    const int preset = arguments.Has("--preset") ? arguments.Integer("--preset")
                                                 : static_cast<int>(AudioVideoSettings::Preset::Hd720At25);
    if (preset < 1 || preset > kLastPreset)
        throw UsageError("--preset: there is no preset " + std::to_string(preset));
    const int frames = arguments.Has("--frames") ? arguments.Integer("--frames") : kFrames;
    if (frames < 1)
        throw UsageError("--frames: at least one is needed");
    if (arguments.Has("--texture") && !arguments.Has("--titles"))
        throw UsageError("--texture goes with --titles");
    const auto format = static_cast<AudioVideoSettings::Preset>(preset);
    const std::string &out = arguments.Operand(0);
    const std::string texture = arguments.Has("--texture") ? arguments.Text("--texture") : "";
    WriteProject(arguments.Has("--titles") ? *MakeTitlesProject(format, frames, out, texture)
                                           : *MakeExampleProject(format, frames),
                 out);
}

} // namespace

const CommandSpec &NewCommand()
{
    static const CommandSpec command{
        "new",
        "a small project to start from and to look at",
        "OUT [--preset N] [--frames N] [--titles [--texture IMAGE]]",
        1,
        1,
        {{"--preset", "N", "the frame format, 1 to 14; 6, which is 1280x720 at 25, if not given"},
         {"--frames", "N", "the length; 250 if not given"},
         {"--titles", "", "styled text with effects and masks in place of a system of planets"},
         {"--texture", "IMAGE", "the picture on the ribbon of the titles, as seen from the folder of OUT"}},
        Run,
        "new film.xml --preset 6 --frames 250"};
    return command;
}

} // namespace marlet::tool
