#include "document/Document.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "samples/ClipProject.h"
#include "samples/CutProject.h"
#include "samples/ExampleProject.h"
#include "samples/ShowcaseProject.h"
#include "samples/TitlesProject.h"

#include <marlet/project/Project.h>

#include <filesystem>

namespace marlet::tool
{

using project::AudioVideoSettings;

namespace
{

/// A clip brings its own format and length.
void MakeFromClip(const Arguments &arguments)
{
    for (const char *option :
         {"--preset", "--frames", "--titles", "--texture", "--cut", "--showcase", "--picture"})
        if (arguments.Has(option))
            throw UsageError(std::string(option) + " does not go with --media");
    // A project names its files so that it can be opened in any folder.
    const std::string path = std::filesystem::absolute(arguments.Path("--media")).lexically_normal().string();
    const bool hasFeature = arguments.Has("--at");
    const Feature feature = hasFeature ? FeatureOption(arguments) : Feature();
    const MediaSource source = OpenMediaFile(path, arguments.Has("--sequence"));
    const ClipProject clip = MakeClipProject(source.project, source.media);
    if (hasFeature)
        AddTracker(*clip.layer, feature);
    WriteProject(*clip.project, arguments.Operand(0));
}

std::shared_ptr<project::Project> MakeProject(const Arguments &arguments, AudioVideoSettings::Preset format,
                                              int frames)
{
    const std::string &out = arguments.Operand(0);
    if (arguments.Has("--cut"))
        return MakeCutProject(format, frames, out);
    if (arguments.Has("--showcase"))
        return MakeShowcaseProject(
            {format, frames, out, arguments.Path("--showcase"), arguments.Path("--picture")});
    if (arguments.Has("--titles"))
        return MakeTitlesProject(format, frames, out,
                                 arguments.Has("--texture") ? arguments.Path("--texture") : "");
    return MakeExampleProject(format, frames);
}

void Run(const Arguments &arguments, Output &)
{
    if (arguments.Has("--media"))
        return MakeFromClip(arguments);
    for (const char *option : {"--sequence", "--at"})
        if (arguments.Has(option))
            throw UsageError(std::string(option) + " goes with --media");
    for (const char *option : {"--feature", "--search"})
        if (arguments.Has(option))
            throw UsageError(std::string(option) + " goes with --at");
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
    if (arguments.Has("--titles") + arguments.Has("--cut") + arguments.Has("--showcase") > 1)
        throw UsageError("--titles, --cut and --showcase do not go together");
    if ((arguments.Has("--cut") || arguments.Has("--showcase")) && frames < kLeastCutFrames)
        throw UsageError("--frames: a cut needs at least " + std::to_string(kLeastCutFrames));
    if (arguments.Has("--picture") != arguments.Has("--showcase"))
        throw UsageError("--showcase and --picture go together");
    WriteProject(*MakeProject(arguments, static_cast<AudioVideoSettings::Preset>(preset), frames),
                 arguments.Operand(0));
}

} // namespace

const CommandSpec &NewCommand()
{
    static const CommandSpec command{
        "new",
        "a small project to start from and to look at",
        "OUT [--preset N] [--frames N] [--titles [--texture IMAGE] | --cut]\n"
        "OUT [--preset N] [--frames N] --showcase CLIP --picture IMAGE\n"
        "OUT --media CLIP [--sequence] [--at X,Y [--feature N] [--search N]]",
        1,
        1,
        {{"--preset", "N", "the frame format, 1 to 14; 6, which is 1280x720 at 25, if not given"},
         {"--frames", "N", "the length; 250 if not given"},
         {"--titles", "", "styled text with effects and masks in place of a system of planets"},
         {"--texture", "IMAGE", "the picture on the ribbon of the titles, as seen from the folder of OUT"},
         {"--cut", "", "the titles and a sequence that uses them, of 50 frames or more"},
         {"--showcase", "CLIP", "all of these and a clip in space: a project that uses everything there is"},
         {"--picture", "IMAGE", "a still that stands beside the clip"},
         {"--media", "CLIP", "a composition in the format of a video file, with a layer that shows it"},
         {"--sequence", "", "CLIP is a member of an image sequence of 25 frames per second"},
         {"--at", "X,Y", "a tracker of the feature there, in pixels from the middle, Y up"},
         {"--feature", "N", "the feature's size in pixels; 64 if not given"},
         {"--search", "N", "the size of the area around it where it is looked for; 160 if not given"}},
        Run,
        "new film.xml --preset 6 --frames 250"};
    return command;
}

} // namespace marlet::tool
