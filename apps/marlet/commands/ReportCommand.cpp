#include "document/Document.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "output/PngFile.h"
#include "output/ProgressBar.h"
#include "output/TextFile.h"
#include "pictures/CurvePicture.h"
#include "pictures/ReportPage.h"
#include "pictures/TimelinePicture.h"
#include "pictures/TreePicture.h"
#include "preview/FrameRenderer.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kThumbnailWidth = 608; ///< twice the place on the page
constexpr std::size_t kMostCurves = 200;

/// The folder that a report is written to, file by file. Ctrl-C ends that between two of them.
class ReportFolder
{
public:
    explicit ReportFolder(const std::string &path) : path_(path)
    {
        std::error_code error;
        if (!std::filesystem::create_directories(path, error) && error)
            throw Failure(path, error.message());
    }

    /// Names beginning alike are numbered. Returns the file's name.
    std::string Add(const std::string &stem, const std::string &ending, const std::string &bytes)
    {
        if (interruption_.Requested())
            throw Failure(path_, "Interrupted");
        char number[16];
        std::snprintf(number, sizeof number, "-%03d", ++count_);
        const std::string name = stem + number + ending;
        WriteFile(PathOf(name), bytes);
        return name;
    }

    std::string PathOf(const std::string &name) const
    {
        return (std::filesystem::path(path_) / name).string();
    }

private:
    std::string path_;
    const Interruption interruption_;
    int count_ = 0;
};

QSize ThumbnailSize(const CompositionAsset &composition)
{
    const AudioVideoSettings &settings = composition.Settings();
    const double width = std::max(1.0, settings.Width() * settings.PixelAspectRatioValue());
    const double height = std::max(1, settings.Height());
    return {kThumbnailWidth,
            std::clamp(static_cast<int>(kThumbnailWidth * height / width), 1, 4 * kThumbnailWidth)};
}

void AddThumbnails(const ProjectPointer &project, ReportFolder &folder, ReportContent &content)
{
    const std::vector<CompositionPointer> compositions = Compositions(*project);
    FrameRenderer renderer(project);
    ProgressBar progress(static_cast<int>(compositions.size()), "compositions");
    for (const CompositionPointer &composition : compositions) {
        const int last = std::max(composition->Settings().FrameCount() - 1, 0);
        // The playhead tells what is being worked on, unless nobody has moved it.
        const int playhead = composition->CurrentTimeIndicator();
        const int frame = playhead > 0 ? std::min(playhead, last) : last / 3;
        const QImage picture = renderer.Render(composition, frame, ThumbnailSize(*composition));
        const std::string file = folder.Add("composition", ".png", EncodePng(picture));
        content.compositions.push_back({file, ToUtf8(composition->Name()) + ", frame " +
                                                  std::to_string(frame) + " of " +
                                                  std::to_string(composition->Settings().FrameCount())});
        progress.Show(static_cast<int>(content.compositions.size()));
    }
    content.leftOut = renderer.LeftOut();
}

void AddCurves(const Project &project, ReportFolder &folder, ReportContent &content)
{
    for (const CompositionPointer &composition : Compositions(project))
        for (const LayerPointer &layer : composition->Layers()) {
            const PropertyManager &properties = layer->Animation();
            for (const NarrowString &name : properties.PropertyNames()) {
                if (properties.KeyFrames(name.c_str()).IsEmpty())
                    continue;
                if (content.curves.size() == kMostCurves) {
                    ++content.curvesLeftOut;
                    continue;
                }
                const std::string file = folder.Add("curve", ".svg", CurvePicture(properties, name));
                content.curves.push_back(
                    {file, ToUtf8(composition->Name()) + ", " + ToUtf8(layer->Name()) + ", " + name});
            }
        }
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &path = arguments.Path("-o");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    ReportFolder folder(path);
    ReportContent content;
    AddThumbnails(project, folder, content);
    if (project->Sequence())
        content.timeline.push_back(
            {folder.Add("timeline", ".svg", TimelinePicture(*project)), "the editor timeline"});
    AddCurves(*project, folder, content);
    content.tree.push_back({folder.Add("tree", ".svg", TreePicture(*project)), "the whole project"});
    content.findings = CheckProject(*project);
    // Last, so that a page is there only with all its pictures.
    const std::string page = folder.PathOf("index.html");
    WriteFile(page, ReportPage(*project, content));
    output.Line("wrote the report " + OneLine(page));
}

} // namespace

const CommandSpec &ReportCommand()
{
    static const CommandSpec command{"report",
                                     "a project on one HTML page",
                                     "FILE -o OUT_DIR",
                                     1,
                                     1,
                                     {{"-o", "OUT_DIR", "the folder for the page and its pictures"}},
                                     Run,
                                     "report examples/titles.xml -o report"};
    return command;
}

} // namespace marlet::tool
