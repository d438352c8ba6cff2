// What curves are before and after operations that keep their shape, by their values.

#include <tests/operations/UndoableProject.h>
#include <tests/support/OddCurves.h>
#include <tests/support/PropertyValuePrinter.h>

#include <marlet/operations/curves/KeyFrameOperations.h>

#include <cmath>

using namespace marlet::test;
using kytl::KyColorRGBA_32f;
using marlet::project::AnimatedProperty;

namespace
{

std::vector<double> Numbers(const PropertyValue &value)
{
    if (const auto *number = boost::get<float>(&value))
        return {*number};
    if (const auto *whole = boost::get<int>(&value))
        return {double(*whole)};
    if (const auto *scale = boost::get<Scale3D>(&value))
        return {scale->X, scale->Y, scale->Z};
    if (const auto *turned = boost::get<Orientation3D>(&value))
        return {turned->X, turned->Y, turned->Z};
    if (const auto *colour = boost::get<KyColorRGBA_32f>(&value))
        return {colour->R, colour->G, colour->B, colour->A};
    const auto &point = boost::get<Point3D>(value);
    return {point.X, point.Y, point.Z};
}

using Curve = std::vector<std::vector<double>>;

Curve Values(const AnimatedProperty &property, int first, int last, int count)
{
    Curve values;
    for (int i = 0; i <= count; ++i)
        values.push_back(
            Numbers(property.ValueAt(first + static_cast<int>(std::int64_t{last - first} * i / count))));
    return values;
}

double Largest(const Curve &a, const Curve &b)
{
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t k = 0; k < a[i].size(); ++k)
            largest = std::max(largest, std::abs(a[i][k] - b[i][k]));
    return largest;
}

/// A property of the null point with key frames.
AnimatedProperty WithKeys(const UndoableProject &document, const char *name,
                          const std::vector<KeyFrame> &keys, bool isSpatial = false)
{
    PropertyManager &properties = document.point->Animation();
    const PropertyValue &value = keys.front().Value();
    if (isSpatial)
        properties.CreateSpatialProperty(name, value, PropertyManager::Type::Animatable, nullptr);
    else
        properties.CreateProperty(name, value, PropertyManager::Type::Animatable, nullptr);
    for (const KeyFrame &key : keys)
        properties.KeyFrames(name).Add(key);
    return {document.point, name};
}

constexpr int kEnd = 10000;

} // namespace

TEST(CurveShape, StaysWhereAKeyFrameIsInserted)
{
    using Keys = std::vector<KeyFrame>;
    const auto curve = [](const PropertyValue &a, const Handle &out, const Handle &in,
                          const PropertyValue &b) {
        return Keys{Key(0, a, {}, out, KeyFrameType::Bezier), Key(kEnd, b, in)};
    };
    const Handle eased{4200, 0};
    const Handle easedIn{-4200, 0};

    struct Row {
        const char *what;
        Keys keys;
        double tolerance; ///< as a part of how far the values reach, which is 100
    };
    const Row rows[] = {
        {"a curve", curve(0.f, {6000, 20}, {-2000, -70}, 100.f), 1e-3},
        {"one that overshoots", curve(0.f, {2000, 150}, {-5000, 60}, 100.f), 1e-3},
        // Where it starts so steeply in its parameter, the model's own table of the curve is coarse.
        {"a handle on one side", curve(0.f, {}, {-7000, -10}, 100.f), 1e-2},
        {"a line", curve(0.f, {}, {}, 100.f), 1e-3},
        {"a flat piece with handles", curve(100.f, {2000, 90}, {-2000, 90}, 100.f), 1e-3},
        {"a hold", {Key(0, 0.f, {}, {2000, 1}, KeyFrameType::Hold), Key(kEnd, 100.f)}, 1e-3},
        {"whole numbers", curve(0, eased, easedIn, 100), 1e-2},
        {"a scale in step", curve(Scale3D{0, 50, 10}, {6000, 20}, {-2000, -70}, Scale3D{100, 150, 110}),
         1e-3},
        {"a rotation", curve(Orientation3D{350, 10, 0}, {}, {}, Orientation3D{90, 20, 5}), 1e-3},
        {"a colour", curve(KyColorRGBA_32f{}, {}, {}, KyColorRGBA_32f{100, 50, 0, 1}), 1e-3},
        // One handle for components that go different ways: as near as it gets.
        {"an eased colour", curve(KyColorRGBA_32f{}, eased, easedIn, KyColorRGBA_32f{100, 50, 0, 1}), 1.2e-2},
        {"an eased rotation", curve(Orientation3D{}, eased, easedIn, Orientation3D{0, 20, 100}), 1.2e-2},
    };
    for (const Row &row : rows) {
        for (const int time : {300, 3333, 5000, 9990}) {
            SCOPED_TRACE(row.what + (" at " + std::to_string(time)));
            UndoableProject document;
            const AnimatedProperty property = WithKeys(document, "curve", row.keys);
            const Curve before = Values(property, -10, kEnd + 10, 200);
            const PropertyValue current = property.ValueAt(time);
            document.Do([&] { InsertKeyFrame(document.project, property, time); });
            EXPECT_EQ(property.ValueAt(time), current);
            EXPECT_EQ(property.Keys().Count(), 3U);
            EXPECT_LE(Largest(before, Values(property, -10, kEnd + 10, 200)), 100 * row.tolerance);
        }
    }
}

TEST(CurveShape, IsMirroredByReversingAndStretchedByScaling)
{
    UndoableProject document;
    const AnimatedProperty property =
        WithKeys(document, "curve",
                 {Key(-2000, 5.f, {}, {900, 3}), Key(1500, 90.f, {-700, 20}, {2000, 30}),
                  Key(kEnd, 0.f, {-5000, 40})});
    Curve before = Values(property, -2000, kEnd, 200);
    const auto scale = [&](double factor) {
        document.Do([&] { ScaleKeyFrames(document.project, property, KeyFramesIn(property), 0, factor); });
    };
    scale(3);
    EXPECT_LT(Largest(before, Values(property, -6000, 3 * kEnd, 200)), 0.2);
    scale(1. / 3);
    document.Do([&] { ReverseKeyFrames(document.project, property); });
    std::ranges::reverse(before);
    EXPECT_LT(Largest(before, Values(property, -2000, kEnd, 200)), 0.2);
}

TEST(CurveShape, StaysWithinTheToleranceOfSimplifying)
{
    using Keys = std::vector<KeyFrame>;
    const auto every = [](int step, const std::function<PropertyValue(double)> &value) {
        Keys keys;
        for (int time = 0; time <= kEnd; time += step)
            keys.push_back(Key(time, value(time / double(kEnd))));
        return keys;
    };
    const auto wave = [](double t) {
        return static_cast<float>(50 * std::sin(6 * t) + 2 * std::cos(150 * t));
    };
    const auto circle = [](double t) {
        return Point3D{float(200 * std::cos(5 * t)), float(200 * std::sin(5 * t)), float(40 * t)};
    };

    struct Row {
        const char *what;
        Keys keys;
        bool isSpatial;
        double tolerance;
        unsigned int most; ///< key frames that may be left
    };
    const Row rows[] = {
        {"a parabola", every(40, [](double t) { return float(100 * t * t); }), false, 0.1, 2},
        {"a wave with noise", every(40, wave), false, 2.5, 100},
        {"the same exactly", every(40, wave), false, 0, 251},
        {"points on a line",
         every(40,
               [](double t) {
                   return Point3D{float(t), float(9 * t), 1};
               }),
         false, 0.01, 2},
        {"a path", every(40, circle), true, 1, 45},
        {"the same by its components", every(40, circle), false, 1, 60},
        {"steps", every(500, [](double t) { return int(t * 4) * 10; }), false, 0.4, 12},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        UndoableProject document;
        const AnimatedProperty property = WithKeys(document, "curve", row.keys, row.isSpatial);
        const Curve before = Values(property, 0, kEnd, kEnd);
        document.Do([&] {
            const unsigned int removed = SimplifyKeyFrames(document.project, property, row.tolerance);
            EXPECT_EQ(property.Keys().Count() + removed, row.keys.size());
        });
        EXPECT_LE(Largest(before, Values(property, 0, kEnd, kEnd)), row.tolerance);
        EXPECT_LE(property.Keys().Count(), row.most);
    }
}

TEST(CurveShape, OutsideOfASpanStaysAsItIs)
{
    const auto curve = [](const UndoableProject &document) {
        return WithKeys(document, "curve",
                        {Key(0, 0.f, {}, {3000, 30}), Key(4000, 90.f, {-1000, 5}, {2000, 30}),
                         Key(7000, 50.f), Key(kEnd, 0.f, {-2000, 40})});
    };
    UndoableProject baked;
    const AnimatedProperty property = curve(baked);
    const Curve before = Values(property, 0, kEnd, kEnd);
    baked.Do([&] { BakeKeyFrames(baked.project, property, 25, {1010, 8005}); });
    const Curve after = Values(property, 0, kEnd, kEnd);
    for (std::size_t time = 0; time < before.size(); ++time) {
        const bool isSampled = time == 1010 || time == 8005 || time % 40 == 0;
        const bool isOutside = time < 1010 || time > 8005;
        if (isSampled || isOutside) {
            EXPECT_NEAR(after[time][0], before[time][0], isOutside ? 0.1 : 0.0) << time;
        }
    }
    UndoableProject simplified;
    const AnimatedProperty other = curve(simplified);
    simplified.Do([&] { SimplifyKeyFrames(simplified.project, other, 1000, {4000, kEnd}); });
    EXPECT_EQ(other.Keys().Locations(), (std::vector{0, 4000, kEnd}));
    EXPECT_EQ(Largest(Values(other, 0, 4000, 4000), before), 0);
}
