#include "Report.h"

#include "CurvePicture.h"
#include "ReportPage.h"
#include "TimelinePicture.h"
#include "TreePicture.h"
#include "output/ImageFile.h"
#include "output/ProgressBar.h"
#include "preview/FrameRenderer.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kThumbnailWidth = 608; ///< twice the place on the page
constexpr std::size_t kMostCurves = 1000;
constexpr std::size_t kMostLargeCurves = 200;

QSize ThumbnailSize(const CompositionAsset &composition)
{
    const AudioVideoSettings &settings = composition.Settings();
    const double width = std::max(1.0, settings.Width() * settings.PixelAspectRatioValue());
    const double height = std::max(1, settings.Height());
    return {kThumbnailWidth,
            std::clamp(static_cast<int>(kThumbnailWidth * height / width), 1, 4 * kThumbnailWidth)};
}

void AddThumbnails(const ProjectPointer &project, const ReportSink &add, ReportContent &content)
{
    const std::vector<CompositionPointer> compositions = Compositions(*project);
    FrameRenderer renderer(project);
    ProgressBar progress(static_cast<int>(compositions.size()), "compositions");
    for (const CompositionPointer &composition : compositions) {
        const int last = std::max(composition->Settings().FrameCount() - 1, 0);
        // The playhead tells what is being worked on, unless nobody has moved it.
        const int playhead = composition->CurrentTimeIndicator();
        const int frame = playhead > 0 ? std::min(playhead, last) : last / 3;
        const QSize size = ThumbnailSize(*composition);
        const std::string file =
            add("composition", ".jpg", EncodeJpeg(renderer.Render(composition, frame, size)));
        content.compositions.push_back({file,
                                        ToUtf8(composition->Name()) + ", frame " + std::to_string(frame) +
                                            " of " + std::to_string(composition->Settings().FrameCount()),
                                        size});
        progress.Show(static_cast<int>(content.compositions.size()));
    }
    content.leftOut = renderer.LeftOut();
}

void AddCurves(const Project &project, const ReportSink &add, ReportContent &content)
{
    for (const CompositionPointer &composition : Compositions(project))
        for (const LayerPointer &layer : composition->Layers()) {
            const PropertyManager &properties = std::as_const(*layer).Animation();
            for (const NarrowString &name : properties.PropertyNames()) {
                if (properties.KeyFrames(name.c_str()).IsEmpty())
                    continue;
                if (content.curves.size() == kMostCurves) {
                    ++content.curvesLeftOut;
                    continue;
                }
                ReportCurve curve{{},
                                  ToUtf8(composition->Name()),
                                  ToUtf8(layer->Name()),
                                  name,
                                  properties.KeyFrames(name.c_str()).Count(),
                                  Sparkline(properties, name)};
                if (content.curves.size() < kMostLargeCurves)
                    curve.file = add("curve", ".svg", CurvePicture(properties, name));
                content.curves.push_back(std::move(curve));
            }
        }
}

} // namespace

std::string MakeReport(const ProjectPointer &project, const ReportSink &add, const std::string &head,
                       const std::string &policy)
{
    ReportContent content;
    AddThumbnails(project, add, content);
    if (project->Sequence())
        content.timeline.push_back(
            {add("timeline", ".svg", TimelinePicture(*project)), "the editor timeline", {}});
    AddCurves(*project, add, content);
    content.tree.push_back({add("tree", ".svg", TreePicture(*project)), "the whole project", {}});
    content.findings = CheckProject(*project);
    return ReportPage(*project, content, head, policy);
}

} // namespace marlet::tool
