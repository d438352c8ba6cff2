#include <tests/operations/UndoableProject.h>
#include <tests/support/OddCurves.h>
#include <tests/support/PropertyValuePrinter.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/operations/curves/KeyFrameOperations.h>
#include <marlet/operations/layers/MaskOperations.h>
#include <marlet/operations/layers/TrackerOperations.h>

#include <cmath>
#include <sstream>

using namespace marlet::test;

namespace
{

constexpr float kInfinite = std::numeric_limits<float>::infinity();

struct OutlinePoint {
    Point2D place;
    Handle left;
    Handle right;
};

std::vector<OutlinePoint> PointsOf(const Mask &mask)
{
    std::vector<OutlinePoint> points;
    for (const std::shared_ptr<PathPoint> &point : mask.Path().Points()) {
        const PropertyManager &properties = std::as_const(*point).Animation();
        points.push_back({boost::get<Point2D>(properties.StaticValue("position")),
                          boost::get<Handle>(properties.StaticValue("leftHandle")),
                          boost::get<Handle>(properties.StaticValue("rightHandle"))});
    }
    return points;
}

/// The corners in order.
std::string Text(const Mask &mask)
{
    std::ostringstream text;
    for (const OutlinePoint &point : PointsOf(mask))
        text << (text.tellp() > 0 ? " " : "") << point.place.X << ',' << point.place.Y;
    text << (mask.Path().IsClosed() ? " closed" : " open");
    return text.str();
}

/// The outline by de Casteljau's construction, as many points on each piece.
std::vector<Point2D> Outline(const Mask &mask, int count)
{
    const std::vector<OutlinePoint> points = PointsOf(mask);
    const auto mix = [](const Point2D &a, const Point2D &b, double t) {
        return Point2D{float(std::lerp(double(a.X), double(b.X), t)),
                       float(std::lerp(double(a.Y), double(b.Y), t))};
    };
    std::vector<Point2D> outline;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const OutlinePoint &from = points[i];
        const OutlinePoint &to = points[(i + 1) % points.size()];
        const Point2D out{from.place.X + from.right.X, from.place.Y + from.right.Y};
        const Point2D in{to.place.X + to.left.X, to.place.Y + to.left.Y};
        for (int k = 0; k < count; ++k) {
            const double t = double(k) / count;
            const Point2D middle = mix(out, in, t);
            outline.push_back(
                mix(mix(mix(from.place, out, t), middle, t), mix(middle, mix(in, to.place, t), t), t));
        }
    }
    return outline;
}

/// How far from the ellipse about a point the outline comes, as a part of the radius; and how far round.
std::pair<double, double> Ellipticity(const Mask &mask, const Point2D &centre, float x, float y)
{
    double furthest = 0;
    double turned = 0;
    Point2D former{};
    for (const Point2D &point : Outline(mask, 1000)) {
        const Point2D unit{(point.X - centre.X) / x, (point.Y - centre.Y) / y};
        furthest = std::max(furthest, std::abs(std::hypot(double(unit.X), double(unit.Y)) - 1));
        turned += std::atan2(unit.X * former.Y - unit.Y * former.X, unit.X * former.X + unit.Y * former.Y);
        former = unit;
    }
    return {furthest, turned};
}

} // namespace

TEST(MaskOperations, DrawRectanglesAndEllipses)
{
    UndoableProject document;
    const auto &project = document.project;
    std::shared_ptr<Mask> mask;
    EXPECT_EQ(document.Do([&] {
        mask = AddRectangleMask(project, document.layer, u"Box", {{10, -5}, 40, 20});
    }),
              "");
    EXPECT_EQ(Text(*mask), "-10,5 30,5 30,-15 -10,-15 closed");
    EXPECT_TRUE(mask->Path().Points()[0]->IsLinear());
    EXPECT_EQ(document.layer->Masks().back(), mask);
    EXPECT_EQ(mask->ParentLayerID(), document.layer->ID());

    document.Do([&] { mask = AddRectangleMask(project, document.text, u"Round", {{10, -5}, 40, 20}, 4); });
    EXPECT_EQ(Text(*mask), "-6,5 26,5 30,1 30,-11 26,-15 -6,-15 -10,-11 -10,1 closed");

    document.Do([&] { mask = AddEllipseMask(project, document.text, u"Oval", {{10, -5}, 300, 20}); });
    const auto [furthest, turned] = Ellipticity(*mask, {10, -5}, 150, 10);
    EXPECT_LT(furthest, 3e-4);
    EXPECT_NEAR(turned, 2 * 3.14159265, 0.01);
    // With corners as large as they can be, a rectangle is a circle as well.
    document.Do([&] { mask = AddRectangleMask(project, document.text, u"Disc", {{}, 80, 80}, 40); });
    EXPECT_LT(Ellipticity(*mask, {}, 40, 40).first, 3e-4);

    EXPECT_EQ(document.Do([&] {
        AddEllipseMask(project, document.point, u"No", {{}, 1, 1});
    }),
              "Layer \"Point\" is of a kind that has no masks");
    for (const PictureRectangle &bad : {PictureRectangle{{}, 0, 1}, {{}, 1, -1}, {{}, kInfinite, 1}})
        EXPECT_EQ(document.Do([&] { AddRectangleMask(project, document.text, u"No", bad); }),
                  "The size of a mask is above 0");
    EXPECT_EQ(document.Do([&] {
        AddRectangleMask(project, document.text, u"No", {{}, 10, 20}, 6);
    }),
              "The radius of a corner is between 0 and half of the shorter side");
}

TEST(TrackerOperations, AddATrackerOfTwoRectangles)
{
    UndoableProject document;
    std::shared_ptr<Tracker> tracker;
    EXPECT_EQ(document.Do([&] {
        tracker = AddTracker(document.project, document.layer, u"Eye", {{5, 6}, 10, 12}, {{8, 2}, 30, 40});
    }),
              "");
    EXPECT_EQ(document.layer->Trackers().back(), tracker);
    const PropertyManager &properties = std::as_const(*tracker->PrimaryTrackingPoint()).Animation();
    EXPECT_EQ(properties.StaticValue("featurePosition"), PropertyValue(Point2D{5, 6}));
    EXPECT_EQ(properties.StaticValue("featureDimensions"), PropertyValue(Point2D{10, 12}));
    EXPECT_EQ(properties.StaticValue("searchPosition"), PropertyValue(Point2D{3, -4}));
    EXPECT_EQ(properties.StaticValue("searchDimensions"), PropertyValue(Point2D{30, 40}));
    EXPECT_EQ(document.Do([&] {
        AddTracker(document.project, document.layer, u"No", {{}, 10, 12}, {{}, 30, 11});
    }),
              "The search area is smaller than the feature");
}

/// The picture is twice as large as its asset, of 64 by 32 pixels, and moves by a pixel each 10 ms. The text
/// starts 2 frames of 40 ms later and hangs on the point, which stands at 100.
TEST(TrackerOperations, HaveALayerFollowAPath)
{
    UndoableProject document;
    const auto &project = document.project;
    document.layer->Animation().StaticValue("scale") = Scale3D{200, 200, 100};
    document.layer->Animation().KeyFrames("position").Add(Key(0, Point3D{10, 20, 0}));
    document.layer->Animation().KeyFrames("position").Add(Key(2000, Point3D{210, 20, 0}));
    document.point->Animation().StaticValue("position") = Point3D{100, 0, 0};
    document.text->MoveLayer(2);
    document.text->SetParentLayer(document.point);
    document.text->Animation().StaticValue("position") = Point3D{0, 0, 7};
    KeyFrameList &feature =
        document.tracker->PrimaryTrackingPoint()->Animation().KeyFrames("featurePosition");
    const auto follow = [&](const std::shared_ptr<AbstractLayer> &layer, double tolerance) {
        return document.Do([&] { FollowTracker(project, document.tracker, layer, tolerance); });
    };

    EXPECT_EQ(follow(document.text, 0), "Tracker \"Tracker\" has no path yet");
    for (int time = 0; time <= 2000; time += 40)
        feature.Add(Key(time, Point2D{float(time % 80 == 0 ? 0.1 : -0.1), float(time) / 100}));
    EXPECT_EQ(follow(document.layer, 0), "Layer \"Picture\" moves the one that was tracked");

    EXPECT_EQ(follow(document.text, 0), "");
    EXPECT_EQ(document.tracker->DestinationLayerID(), document.text->ID());
    const KeyFrameList &keys = document.text->Animation().KeyFrames("position");
    EXPECT_EQ(keys.Count(), 51U);
    const auto placeAt = [&](int time) { return boost::get<Point3D>(keys.At(time - 80).Value()); };
    EXPECT_EQ(placeAt(0), (Point3D{10 + 0.2f - 100, 20, 7}));
    EXPECT_EQ(placeAt(1000), (Point3D{110 - 0.2f - 100, 20 + 20, 7}));
    EXPECT_EQ(placeAt(2000), (Point3D{210 + 0.2f - 100, 20 + 40, 7}));

    EXPECT_EQ(follow(document.text, 0.5), "");
    EXPECT_LE(keys.Count(), 4U);
    for (int time = 0; time <= 2000; ++time) {
        const auto place = boost::get<Point3D>(document.text->Animation().ValueAtTime("position", time - 80));
        EXPECT_NEAR(place.X, -90 + time / 10.0, 0.71);
        EXPECT_NEAR(place.Y, 20 + time / 50.0, 0.51);
    }

    // The second point runs round the first once and comes twice as near: what of the text lies on it at the
    // beginning stays on it.
    const auto followAll = [&](double tolerance) {
        return document.Do([&] {
            FollowTracker(project, document.tracker, document.text, FollowOptions{tolerance, true, true});
        });
    };
    EXPECT_EQ(followAll(0),
              "Tracker \"Tracker\" has not two points with paths, from which rotation and scale come");
    document.tracker->SetType(Tracker::TrackerType::TwoPoints);
    KeyFrameList &second =
        document.tracker->SecondaryTrackingPoint()->Animation().KeyFrames("featurePosition");
    const auto secondAt = [&](int time) {
        const double angle = time / 2000.0 * 2 * 3.14159265358979 + 0.3;
        const double distance = 20 - time / 200.0;
        const auto first = boost::get<Point2D>(
            document.tracker->PrimaryTrackingPoint()->Animation().ValueAtTime("featurePosition", time));
        return Point2D{float(first.X + distance * std::cos(angle)),
                       float(first.Y + distance * std::sin(angle))};
    };
    for (int time = 0; time <= 2000; time += 40)
        second.Add(Key(time, secondAt(time)));
    const auto worldOf = [&](const AbstractLayer &layer, int time, const Point3D &point) {
        return layer.WorldTransformationAtTime(time, project, false).TransformPoint(point);
    };
    const auto pixel = [](const Point2D &place) { return Point3D{32 + place.X, 16 + place.Y, 0}; };
    for (const double tolerance : {0.0, 1.0}) {
        EXPECT_EQ(followAll(tolerance), "");
        AbstractLayer::Matrix toText = document.text->WorldTransformationAtTime(-80, project, false);
        toText.Invert();
        const Point3D marked = toText.TransformPoint(worldOf(*document.layer, 0, pixel(secondAt(0))));
        for (int time = 0; time <= 2000; time += 40) {
            const Point3D there = worldOf(*document.text, time - 80, marked);
            const Point3D wanted = worldOf(*document.layer, time, pixel(secondAt(time)));
            EXPECT_NEAR(there.X, wanted.X, 0.01 + 4 * tolerance) << time;
            EXPECT_NEAR(there.Y, wanted.Y, 0.01 + 4 * tolerance) << time;
        }
        EXPECT_NEAR(std::abs(boost::get<float>(document.text->Animation().ValueAtTime("rotationZ", 1920)) -
                             boost::get<float>(document.text->Animation().ValueAtTime("rotationZ", -80))),
                    360, 0.01);
    }

    document.tracker->SetParentLayerID(document.text->ID());
    EXPECT_EQ(follow(document.point, 0),
              "Tracker \"Tracker\" is on no layer of the composition of \"Point\"");
}
