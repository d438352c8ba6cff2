#include "CurvePicture.h"

#include "options/TypedValue.h"
#include "output/Output.h"
#include "output/SvgPicture.h"

#include <marlet/animation/PropertyManager.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <vector>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr double kWidth = 800;
constexpr double kHeight = 400;
constexpr double kMargin = 75;
constexpr int kSamples = 200;
constexpr int kSteps = 40; ///< of equal time along a path
constexpr double kKeySize = 8;

constexpr char kStyle[] = R"(
.background { fill: #fcfcfc }
.frame { fill: none; stroke: #bbb }
text { font: 12px sans-serif; fill: #333 }
.curve { fill: none; stroke-width: 1.5 }
.c0 { stroke: #c62828 } .c1 { stroke: #2e7d32 } .c2 { stroke: #1565c0 } .c3 { stroke: #757575 }
.key { fill: #fff; stroke: #333 }
.handle { stroke: #999 } .grip { fill: #999 }
.path { fill: none; stroke: #555 } .step { fill: #e65100 } .tangent { stroke: #90a4ae }
)";

struct Range {
    double low = 0;
    double high = 0;
    bool isEmpty = true;

    void Include(double number)
    {
        if (!std::isfinite(number))
            return;
        low = isEmpty ? number : std::min(low, number);
        high = isEmpty ? number : std::max(high, number);
        isEmpty = false;
    }

    /// So that a constant stands in the middle and curves keep clear of the frame.
    Range Widened() const
    {
        const double room = high > low ? (high - low) * 0.05 : std::max(std::abs(high) * 0.1, 1.0);
        return {low - room, high + room, isEmpty};
    }
};

/// Where numbers go along one side of a panel.
struct Axis {
    Range range;
    double start; ///< pixels
    double end;

    double At(double number) const
    {
        return start + (number - range.low) / (range.high - range.low) * (end - start);
    }
};

/// A property as it moves.
class Curve
{
public:
    Curve(const PropertyManager &properties, const std::string &name)
        : properties_(properties), id_(properties.GetPropertyID(name.c_str()))
    {
        properties.KeyFrames(name.c_str()).ForEach([this](const KeyFrame &key) { keys_.push_back(key); });
        first_ = keys_.empty() ? 0 : keys_.front().Time();
        last_ = keys_.empty() ? 1000 : keys_.back().Time();
        if (last_ == first_) {
            first_ -= 500;
            last_ += 500;
        }
    }

    const std::vector<KeyFrame> &Keys() const { return keys_; }
    int First() const { return first_; }
    int Last() const { return last_; }
    /// A moment from 0 to 1 between the first and the last.
    int TimeAt(double moment) const
    {
        return first_ + static_cast<int>(std::lround(moment * (static_cast<double>(last_) - first_)));
    }
    /// Not where key frames hold what no value lies between, or what is no place on a path.
    bool HasValueAt(int time) const { return ValueAt(time).has_value(); }
    /// None where there is no value.
    std::vector<double> At(int time) const
    {
        const std::optional<PropertyValue> value = ValueAt(time);
        return value ? Components(*value) : std::vector<double>();
    }
    bool IsPath() const { return properties_.IsSpatial(id_) && keys_.size() > 1; }

private:
    std::optional<PropertyValue> ValueAt(int time) const
    {
        try {
            return properties_.ValueAtTime(id_, time);
        } catch (const std::runtime_error &) {
            return std::nullopt;
        } catch (const boost::bad_get &) {
            return std::nullopt;
        }
    }

    const PropertyManager &properties_;
    PropertyManager::PropertyID id_;
    std::vector<KeyFrame> keys_;
    int first_;
    int last_;
};

/// A handle is an offset in time and value. Only where there is a single number to offset is its value known.
struct Handle {
    double time;
    double value;
};

std::vector<Handle> HandlesOf(const KeyFrame &key, double value, bool isSingle)
{
    std::vector<Handle> handles;
    for (const auto &point : {key.IncomingPoint(), key.OutgoingPoint()})
        if (point.X != 0 || point.Y != 0)
            handles.push_back({key.Time() + static_cast<double>(point.X),
                               isSingle ? value + static_cast<double>(point.Y) : value});
    return handles;
}

void DrawFrame(SvgPicture &picture, const Axis &x, const Axis &y, const std::string &unit)
{
    picture.Add("rect", {{"class", "frame"},
                         {"x", x.start},
                         {"y", y.end},
                         {"width", x.end - x.start},
                         {"height", y.start - y.end}});
    const auto label = [&](double atX, double atY, const char *anchor, double number,
                           const std::string &text) {
        picture.Add("text", {{"x", atX}, {"y", atY}, {"text-anchor", anchor}}, SvgNumber(number) + text);
    };
    label(x.start, y.start + 16, "start", x.range.low, unit);
    label(x.end, y.start + 16, "end", x.range.high, unit);
    label(x.start - 4, y.start, "end", y.range.low, "");
    label(x.start - 4, y.end + 10, "end", y.range.high, "");
}

void DrawKey(SvgPicture &picture, double x, double y, const KeyFrame &key)
{
    picture.Open("rect", {{"class", "key"},
                          {"x", x - kKeySize / 2},
                          {"y", y - kKeySize / 2},
                          {"width", kKeySize},
                          {"height", kKeySize}});
    picture.Add("title", {}, std::to_string(key.Time()) + " ms: " + ValueText(key.Value()));
    picture.Close();
}

void DrawLine(SvgPicture &picture, const char *style, double x1, double y1, double x2, double y2)
{
    picture.Add("line", {{"class", style}, {"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}});
}

void DrawComponent(SvgPicture &picture, const Curve &curve, const Axis &x, const Axis &y,
                   std::size_t component)
{
    std::string points;
    for (int sample = 0; sample <= kSamples; ++sample) {
        const int time = curve.TimeAt(static_cast<double>(sample) / kSamples);
        const std::vector<double> values = curve.At(time);
        if (component < values.size())
            points += SvgNumber(x.At(time)) + "," + SvgNumber(y.At(values[component])) + " ";
    }
    picture.Add("polyline", {{"class", "curve c" + std::to_string(component % 4)}, {"points", points}});
    for (const KeyFrame &key : curve.Keys()) {
        const std::vector<double> values = Components(key.Value());
        if (component >= values.size())
            continue;
        const double atX = x.At(key.Time());
        const double atY = y.At(values[component]);
        for (const Handle &handle : HandlesOf(key, values[component], values.size() == 1)) {
            DrawLine(picture, "handle", atX, atY, x.At(handle.time), y.At(handle.value));
            picture.Add(
                "circle",
                {{"class", "grip"}, {"cx", x.At(handle.time)}, {"cy", y.At(handle.value)}, {"r", 3.0}});
        }
        DrawKey(picture, atX, atY, key);
    }
}

/// Whether some of the curve has no value, and so is not drawn.
bool HasGaps(const Curve &curve)
{
    for (int sample = 0; sample <= kSamples; ++sample)
        if (!curve.HasValueAt(curve.TimeAt(static_cast<double>(sample) / kSamples)))
            return true;
    return false;
}

void DrawValues(SvgPicture &picture, const Curve &curve)
{
    Range times;
    Range values;
    std::size_t components = 0;
    times.Include(curve.First());
    times.Include(curve.Last());
    for (int sample = 0; sample <= kSamples; ++sample) {
        const std::vector<double> numbers = curve.At(curve.TimeAt(static_cast<double>(sample) / kSamples));
        components = std::max(components, numbers.size());
        std::for_each(numbers.begin(), numbers.end(), [&](double number) { values.Include(number); });
    }
    for (const KeyFrame &key : curve.Keys())
        if (const std::vector<double> numbers = Components(key.Value()); numbers.size() == 1)
            for (const Handle &handle : HandlesOf(key, numbers[0], true)) {
                times.Include(handle.time);
                values.Include(handle.value);
            }
    const Axis x{times, kMargin, kWidth - kMargin};
    const Axis y{values.Widened(), kHeight - kMargin, kMargin};
    DrawFrame(picture, x, y, " ms");
    for (std::size_t component = 0; component < components; ++component)
        DrawComponent(picture, curve, x, y, component);
}

/// The plane of X and Y, Y up, with the same scale on both axes.
struct Plane {
    Axis x;
    Axis y;

    Plane(const Range &across, const Range &up)
    {
        constexpr double kTop = kHeight + kMargin;
        const Range wide = across.Widened();
        const Range high = up.Widened();
        const double scale = std::min((kWidth - 2 * kMargin) / (wide.high - wide.low),
                                      (kHeight - 2 * kMargin) / (high.high - high.low));
        x = {wide, kMargin, kMargin + (wide.high - wide.low) * scale};
        y = {high, kTop + (high.high - high.low) * scale, kTop};
    }
};

void DrawPath(SvgPicture &picture, const Curve &curve)
{
    Range across;
    Range up;
    std::vector<std::vector<double>> samples;
    for (int sample = 0; sample <= kSamples; ++sample) {
        samples.push_back(curve.At(curve.TimeAt(static_cast<double>(sample) / kSamples)));
        if (samples.back().size() < 2) {
            samples.pop_back();
            continue;
        }
        across.Include(samples.back()[0]);
        up.Include(samples.back()[1]);
    }
    const Plane plane(across, up);
    DrawFrame(picture, plane.x, plane.y, " px");
    std::string points;
    for (const std::vector<double> &place : samples)
        points += SvgNumber(plane.x.At(place[0])) + "," + SvgNumber(plane.y.At(place[1])) + " ";
    picture.Add("polyline", {{"class", "path"}, {"points", points}});
    for (int step = 0; step <= kSteps; ++step) {
        const std::vector<double> place = curve.At(curve.TimeAt(static_cast<double>(step) / kSteps));
        if (place.size() < 2)
            continue;
        picture.Add(
            "circle",
            {{"class", "step"}, {"cx", plane.x.At(place[0])}, {"cy", plane.y.At(place[1])}, {"r", 2.0}});
    }
    for (const KeyFrame &key : curve.Keys()) {
        const std::vector<double> place = Components(key.Value());
        if (place.size() < 2)
            continue;
        const double atX = plane.x.At(place[0]);
        const double atY = plane.y.At(place[1]);
        for (const auto &tangent : {key.SpatialIncomingTangent(), key.SpatialOutgoingTangent()})
            if (tangent.X != 0 || tangent.Y != 0)
                DrawLine(picture, "tangent", atX, atY, plane.x.At(place[0] + static_cast<double>(tangent.X)),
                         plane.y.At(place[1] + static_cast<double>(tangent.Y)));
        DrawKey(picture, atX, atY, key);
    }
}

} // namespace

std::string CurvePicture(const PropertyManager &properties, const std::string &name)
{
    const Curve curve(properties, name);
    SvgPicture picture(kWidth, curve.IsPath() ? 2 * kHeight : kHeight, kStyle);
    picture.Add(
        "text", {{"x", kMargin}, {"y", 24.0}},
        name + ", " + Counted(curve.Keys().size(), "key frame") +
            (properties.HasExpression(name.c_str()) ? ", with an expression that is not evaluated" : "") +
            (HasGaps(curve) ? ", without a value in places" : ""));
    DrawValues(picture, curve);
    if (curve.IsPath()) {
        // Evaluating has worked the tangents out, which the key frames now tell.
        const Curve evaluated(properties, name);
        DrawPath(picture, evaluated);
    }
    return picture.Text();
}

std::string Sparkline(const PropertyManager &properties, const std::string &name)
{
    constexpr int kMoments = 48;
    constexpr double kHigh = 24;
    constexpr double kLong = 144;
    const Curve curve(properties, name);
    std::vector<std::string> lines;
    Range values;
    std::vector<std::vector<double>> samples;
    for (int step = 0; step <= kMoments; ++step) {
        samples.push_back(curve.At(curve.TimeAt(static_cast<double>(step) / kMoments)));
        for (const double number : samples.back())
            values.Include(number);
        lines.resize(std::max(lines.size(), samples.back().size()));
    }
    const Axis y{values.Widened(), kHigh - 1, 1};
    const auto tenth = [](double number) { return SvgNumber(std::round(number * 10) / 10); };
    for (int step = 0; step <= kMoments; ++step)
        for (std::size_t i = 0; i < samples[static_cast<std::size_t>(step)].size(); ++i)
            lines[i] += (lines[i].empty() ? "" : " ") + tenth(kLong * step / kMoments) + "," +
                        tenth(y.At(samples[static_cast<std::size_t>(step)][i]));
    std::string svg = "<svg class=\"spark\" viewBox=\"0 0 144 24\" aria-hidden=\"true\">";
    for (std::size_t i = 0; i < lines.size(); ++i)
        svg += "<polyline class=\"c" + std::to_string(i % 4) + "\" points=\"" + lines[i] + "\"/>";
    return svg + "</svg>";
}

} // namespace marlet::tool
