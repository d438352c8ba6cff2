#include "Arguments.h"
#include "Document.h"
#include "MediaSource.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>

#include <filesystem>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The layers keep what their asset offers, and learn of a change when they are asked.
void RefreshLayers(const Project &project, const MediaAsset &media)
{
    for (const auto &reference : media.Instances())
        if (const auto layer = std::dynamic_pointer_cast<AssetLayer>(reference.lock()))
            if (layer->Asset(project.Assets())) {
                layer->HasAudio();
                layer->HasVideo();
            }
}

void Run(const Arguments &arguments, Output &)
{
    const std::string &asset = arguments.Text("--asset");
    // A project names its files so that it can be opened in any folder.
    const WideString path =
        FromUtf8(std::filesystem::absolute(arguments.Path("--to")).lexically_normal().string());

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    MediaPointer media = FindMedia(*project, asset);
    if (media->IsImageSequence())
        project->Media().RelinkImageSequence(media, path);
    else
        project->Media().RelinkMediaFile(media, path);
    RequireUsable(*media);
    RefreshLayers(std::as_const(*project), *media);
    WriteProject(*project, arguments.Operand(1));
}

} // namespace

const CommandSpec &RelinkCommand()
{
    static const CommandSpec command{
        "relink",
        "point a media asset at another file",
        "PROJECT OUT --asset A --to PATH",
        2,
        2,
        {{"--asset", "A", "the media asset, by ID or name"},
         {"--to", "PATH", "the file, or a member of the image sequence if the asset is one"}},
        Run,
        "relink film.xml out.xml --asset clip.mov --to moved/clip.mov"};
    return command;
}

} // namespace marlet::tool
