#include "TimelinePicture.h"

#include "document/Timeline.h"
#include "output/Output.h"
#include "output/SvgPicture.h"

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr double kMargin = 16;
constexpr double kRight = 40;  ///< half a time code reaches over the last tick
constexpr double kNames = 130; ///< width of the column of track names
constexpr double kPlot = 1100;
constexpr double kRuler = 44;
constexpr double kRow = 56;
constexpr double kBetween = 8;

constexpr char kStyle[] = R"(text { font: 12px sans-serif; fill: #e8e8ee }
.background { fill: #1e1f26 }
.lane { fill: #2a2c36 }
.area { fill: #ffffff; opacity: 0.05 }
.off { opacity: 0.4 }
.video { fill: #3d6ea8; stroke: #1e1f26 }
.audio { fill: #3f8a63; stroke: #1e1f26 }
.missing { fill: #a04848; stroke: #1e1f26 }
.gap { fill: none; stroke: #6c7080; stroke-dasharray: 4 4 }
.transition { fill: #f2c14e; opacity: 0.75; stroke: #1e1f26 }
.cross { stroke: #1e1f26; fill: none }
.link { stroke: #c8cad6; stroke-dasharray: 2 3; opacity: 0.6 }
.tick { stroke: #6c7080 }
.point { stroke: #7fd1e0; stroke-width: 1.5 }
.playhead { stroke: #ff5c5c; fill: #ff5c5c; stroke-width: 1.5 }
.small { font-size: 10px; fill: #b4b7c4 })";

/// A round number of frames between two ticks of which some ten fit.
long long TickStep(double frames)
{
    const double rough = std::max(1.0, frames / 10);
    const double power = std::pow(10, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= rough)
            return std::llround(factor * power);
    return std::llround(10 * power);
}

class Drawing
{
public:
    explicit Drawing(const Project &project)
        : project_(project),
          sequence_(*project.Sequence()),
          rows_(Rows(sequence_)),
          picture_(kMargin + kNames + kPlot + kRight, 2 * kMargin + kRuler + RowTop(rows_.size()), kStyle)
    {
        last_ = std::max(1, sequence_.Settings().FrameCount());
        for (const ObjectPointer &object : ObjectsOf(sequence_)) {
            first_ = std::min(first_, static_cast<double>(object->StartFrame()));
            last_ = std::max(last_, static_cast<double>(object->EndFrame()));
        }
    }

    std::string Text()
    {
        DrawRuler();
        const double from = X(sequence_.InPoint());
        picture_.Add("rect", {{"class", "area"},
                              {"x", from},
                              {"y", kMargin + kRuler},
                              {"width", std::max(0.0, X(sequence_.OutPoint()) - from)},
                              {"height", RowTop(rows_.size()) - kBetween}});
        for (std::size_t i = 0; i < rows_.size(); ++i)
            DrawTrack(*rows_[i], Top(i));
        DrawLinks();
        DrawMark("point", "in", sequence_.InPoint());
        DrawMark("point", "out", sequence_.OutPoint());
        DrawMark("playhead", "playhead", sequence_.CurrentTimeIndicator());
        return picture_.Text();
    }

private:
    static std::vector<TrackPointer> Rows(const EditorSequence &sequence)
    {
        std::vector<TrackPointer> rows = TracksOf(sequence);
        std::reverse(rows.begin(), rows.begin() + sequence.VideoTracks().Count());
        return rows;
    }

    static double RowTop(std::size_t row) { return static_cast<double>(row) * (kRow + kBetween); }
    static double Top(std::size_t row) { return kMargin + kRuler + RowTop(row); }
    double X(double frame) const { return kMargin + kNames + (frame - first_) / (last_ - first_) * kPlot; }

    std::string Time(long long frame) const
    {
        return TimeCode::FromFrame(static_cast<int>(frame), sequence_.Settings().FrameRate()).ToString();
    }

    void DrawRuler()
    {
        const long long step = TickStep(last_ - first_);
        const double y = kMargin + kRuler;
        for (auto frame = static_cast<long long>(std::ceil(first_ / static_cast<double>(step))) * step;
             static_cast<double>(frame) <= last_; frame += step) {
            const double x = X(static_cast<double>(frame));
            picture_.Add("line", {{"class", "tick"}, {"x1", x}, {"y1", y - 8}, {"x2", x}, {"y2", y - 2}});
            picture_.Add("text", {{"class", "small"}, {"x", x}, {"y", y - 22}, {"text-anchor", "middle"}},
                         Time(frame));
            picture_.Add("text", {{"class", "small"}, {"x", x}, {"y", y - 11}, {"text-anchor", "middle"}},
                         std::to_string(frame));
        }
    }

    static bool IsOff(const AbstractSequenceTrack &track)
    {
        const auto *video = dynamic_cast<const VideoTrack *>(&track);
        const auto *audio = dynamic_cast<const AudioTrack *>(&track);
        return (video && !video->IsVisible()) || (audio && audio->IsMuted());
    }

    void DrawTrack(const AbstractSequenceTrack &track, double y)
    {
        picture_.Open("g", {{"class", IsOff(track) ? "track off" : "track"}});
        picture_.Open("svg", {{"x", kMargin}, {"y", y}, {"width", kNames - 8}, {"height", kRow}});
        picture_.Add("text", {{"x", 0.0}, {"y", 25.0}}, ToUtf8(track.Name()));
        picture_.Add("text", {{"class", "small"}, {"x", 0.0}, {"y", 41.0}},
                     TrackTypeName(track.Type()) + (IsOff(track) ? ", off" : ""));
        picture_.Close();
        picture_.Add(
            "rect",
            {{"class", "lane"}, {"x", kMargin + kNames}, {"y", y}, {"width", kPlot}, {"height", kRow}});
        const std::vector<ObjectPointer> objects = ObjectsOf(track);
        long long covered = 0;
        for (const ObjectPointer &object : objects) {
            DrawGap(covered, object->StartFrame(), y);
            covered = std::max<long long>(covered, object->EndFrame());
            DrawObject(*object, y);
            tops_[object->ID()] = y;
        }
        DrawGap(covered, sequence_.Settings().FrameCount(), y);
        for (const ObjectPointer &object : objects)
            DrawTransitions(*object, y);
        picture_.Close();
    }

    void DrawGap(long long start, long long end, double y)
    {
        if (start >= end)
            return;
        const double x = X(static_cast<double>(start));
        const double width = X(static_cast<double>(end)) - x;
        picture_.Open("svg", {{"x", x}, {"y", y}, {"width", width}, {"height", kRow}});
        picture_.Add("title", {}, "gap of " + Counted(static_cast<std::size_t>(end - start), "frame"));
        picture_.Add("rect", {{"class", "gap"},
                              {"x", 2.0},
                              {"y", 8.0},
                              {"width", std::max(0.0, width - 4)},
                              {"height", kRow - 16}});
        picture_.Add("text",
                     {{"class", "small"}, {"x", width / 2}, {"y", kRow / 2 + 4}, {"text-anchor", "middle"}},
                     std::to_string(end - start));
        picture_.Close();
    }

    void DrawObject(const AbstractSequenceObject &object, double y)
    {
        const auto asset = object.Asset(project_.Assets());
        const bool missing = !asset || asset->IsOffline();
        const double x = X(object.StartFrame());
        const double width = std::max(1.0, X(object.EndFrame()) - x);
        const std::string span =
            std::to_string(object.StartFrame()) + " to " + std::to_string(object.EndFrame());
        const std::string remark = !asset ? ", no asset" : asset->IsOffline() ? ", offline" : "";
        const auto *sound = dynamic_cast<const AudioObject *>(&object);
        picture_.Open("svg", {{"x", x},
                              {"y", y},
                              {"width", width},
                              {"height", kRow},
                              {"class", sound && sound->IsMuted() ? "object off" : "object"}});
        picture_.Add("title", {}, ToUtf8(object.Name()) + ", frames " + span + remark);
        picture_.Add("rect", {{"class", missing                               ? "missing"
                                        : object.Type() == ObjectType::Visual ? "video"
                                                                              : "audio"},
                              {"width", width},
                              {"height", kRow},
                              {"rx", 3.0}});
        picture_.Add("text", {{"x", 5.0}, {"y", 16.0}}, ToUtf8(object.Name()));
        picture_.Add("text", {{"class", "small"}, {"x", 5.0}, {"y", 50.0}}, span + remark);
        picture_.Close();
    }

    /// A shared transition is drawn with the object before the cut.
    void DrawTransitions(const AbstractSequenceObject &object, double y)
    {
        if (const auto &incoming = object.IncomingTransition(); incoming && incoming->FromObject().IsNull())
            DrawTransition(*incoming, object.StartFrame(), y);
        if (object.OutgoingTransition())
            DrawTransition(*object.OutgoingTransition(), object.EndFrame(), y);
    }

    void DrawTransition(const Transition &transition, double cut, double y)
    {
        constexpr double kHeight = 16;
        const double start = cut + transition.RelativeStartFrame();
        const double x = X(start);
        const double width = std::max(1.0, X(start + transition.Length()) - x);
        picture_.Open("g", {{"transform", "translate(" + SvgNumber(x) + " " + SvgNumber(y + 21) + ")"}});
        picture_.Add("title", {},
                     TransitionName(transition) + " " + TransitionEnds(sequence_, transition) + ", " +
                         std::to_string(transition.Length()) + " frames");
        picture_.Add("rect", {{"class", "transition"}, {"width", width}, {"height", kHeight}});
        const std::string across = SvgNumber(width) + " ";
        picture_.Add("path", {{"class", "cross"},
                              {"d", "M0 0L" + across + SvgNumber(kHeight) + "M0 " + SvgNumber(kHeight) + "L" +
                                        across + "0"}});
        picture_.Close();
    }

    /// Between partners, once for each pair.
    void DrawLinks()
    {
        for (const ObjectPointer &object : ObjectsOf(sequence_)) {
            const ObjectPointer partner = PartnerOf(sequence_, *object);
            if (!partner || tops_[partner->ID()] <= tops_[object->ID()])
                continue;
            picture_.Add("line", {{"class", "link"},
                                  {"x1", X(object->StartFrame()) + 3},
                                  {"y1", tops_[object->ID()] + kRow},
                                  {"x2", X(partner->StartFrame()) + 3},
                                  {"y2", tops_[partner->ID()]}});
        }
    }

    void DrawMark(const char *kind, const char *name, int frame)
    {
        const double x = X(std::clamp(static_cast<double>(frame), first_, last_));
        const double top = kMargin + kRuler;
        picture_.Open("g", {{"class", kind}});
        picture_.Add("title", {}, std::string(name) + ", frame " + std::to_string(frame));
        picture_.Add("line",
                     {{"x1", x}, {"y1", top - 4}, {"x2", x}, {"y2", top + RowTop(rows_.size()) - kBetween}});
        picture_.Add(
            "text",
            {{"class", "small"}, {"stroke", "none"}, {"x", x}, {"y", 10.0}, {"text-anchor", "middle"}}, name);
        picture_.Close();
    }

    const Project &project_;
    const EditorSequence &sequence_;
    std::vector<TrackPointer> rows_;
    SvgPicture picture_;
    double first_ = 0;
    double last_ = 1;
    std::unordered_map<kytl::KyID, double> tops_; ///< of objects
};

} // namespace

std::string TimelinePicture(const Project &project)
{
    return Drawing(project).Text();
}

} // namespace marlet::tool
