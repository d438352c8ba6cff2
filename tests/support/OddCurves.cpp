#include <tests/support/OddCurves.h>

#include <limits>
#include <set>
#include <tuple>

namespace marlet::test
{

using namespace project;
using namespace std::string_literals;
using kytl::KyColorRGBA_32f;
using kytl::KyID;
using kytl::matl::KyPoint;
using kytl::matl::KyVector;

namespace
{

constexpr int kFirst = std::numeric_limits<int>::min();
constexpr int kLast = std::numeric_limits<int>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

KeyFrameList ListOf(std::initializer_list<KeyFrame> keys,
                    KeyFrameList::SpatialDataType type = KeyFrameList::SpatialDataType::NotSpatial)
{
    KeyFrameList list;
    list.SetSpatialType(type);
    for (const KeyFrame &key : keys)
        list.Add(key);
    return list;
}

/// Pieces of every kind: straight, curved, held, of one time unit, with two key frames at one of the ends.
void AddEachAlternative(std::vector<OddCurve> &curves)
{
    for (const std::vector<PropertyValue> &v : SevenValuesOfEach()) {
        const auto name = "alternative " + std::to_string(v.front().which());
        curves.push_back({name, false,
                          ListOf({Key(-300, v[0]), Key(-40, v[1], {}, {12, 30}), Key(0, v[2], {-9, -400}),
                                  Key(7, v[3], {}, {}, KeyFrameType::Hold), Key(7, v[4], {}, {50, 1}),
                                  Key(1000, v[5], {-700, -2}, {}, KeyFrameType::Bezier),
                                  Key(1001, v[6], {}, {}, KeyFrameType::Hold), Key(1100, v[0])})});
    }
}

void AddTemporalHandles(std::vector<OddCurve> &curves)
{
    // In parts of the piece.
    const std::tuple<const char *, float, float> cases[] = {{"eased", 0.3f, -0.4f},
                                                            {"crossing", 1, -1},
                                                            {"overlapping", 3, -3},
                                                            {"backwards", -2, 2},
                                                            {"both to the right", 2.5f, 1.5f},
                                                            {"far", 4000, -9000},
                                                            {"out of sight to one side", 1e30f, 1e30f},
                                                            {"endless to one side", -kInfinity, -kInfinity},
                                                            {"no number", kNaN, 0.1f},
                                                            {"tiny", 1e-30f, -1e-42f}};
    for (const auto &[name, outgoing, incoming] : cases) {
        for (const int span : {1, 2, 99, 100, 250, 65534, 65536, 10000000}) {
            const auto length = static_cast<float>(span);
            for (const int first : {-span / 3, 5, -7 * span})
                curves.push_back({name + ", "s + std::to_string(span) + " from " + std::to_string(first),
                                  false,
                                  ListOf({Key(first, 1.0, {}, {outgoing * length, 2}),
                                          Key(first + span, 2.0, {incoming * length, -3})})});
        }
        curves.push_back(
            {name + ", all of time"s, false,
             ListOf({Key(kFirst, 1.0, {}, {outgoing * 4e9f, 2}), Key(kLast, 2.0, {incoming * 4e9f, -3})})});
    }
    curves.push_back({"handles in value alone", false,
                      ListOf({Key(0, 1.0f, {}, {-0.0f, 5}), Key(100, 2.0f, {0.0f, kNaN}, {0, kInfinity}),
                              Key(200, 3.0f)})});
    curves.push_back(
        {"no values", false, ListOf({Key(0, kNaN), Key(10, kInfinity, {}, {1, 0}), Key(20, -kInfinity)})});
}

template <class Point>
void AddPaths(std::vector<OddCurve> &curves, const std::string &name, KeyFrameList::SpatialDataType type)
{
    const auto add = [&](const char *what, std::initializer_list<KeyFrame> keys) {
        curves.push_back({name + ", " + what, true, ListOf(keys, type)});
    };
    add("two points", {Key(0, Point{0, 0}, {}, {60, 10}), Key(150, Point{100, 40}, {-60, 0})});
    add("straight timing", {Key(-50, Point{0, 0}), Key(0, Point{100, 0}), Key(250, Point{100, 100})});
    add("curved timing",
        {Key(0, Point{0, 0}, {}, {40, 30}), Key(100, Point{100, 0}, {-20, -50}, {90, 200}),
         Key(300, Point{-100, 1e5f}, {-150, 0}, {1, 1}), Key(320, Point{-3e-5f, 0}, {4, 90})});
    add("points that coincide",
        {Key(0, Point{5, 5}), Key(10, Point{5, 5}), Key(20, Point{5, 9}, {}, {3, 3}), Key(30, Point{5, 5}),
         Key(40, Point{5.00001f, 5}), Key(50, Point{5.001f, 5})});
    add("several at one time",
        {Key(0, Point{1, 2}), Key(0, Point{3, 4}), Key(10, Point{50, 6}), Key(10, Point{7, 80}),
         Key(10, Point{9, 10}), Key(90, Point{11, 120}), Key(90, Point{13, 14})});
    add("held",
        {Key(0, Point{0, 0}, {}, {}, KeyFrameType::Hold), Key(10, Point{9, 9}), Key(20, Point{3, 0})});
}

} // namespace

KeyFrame Key(int time, const PropertyValue &value, const Handle &incoming, const Handle &outgoing,
             KeyFrameType type)
{
    KeyFrame key(time, value);
    key.SetIncomingPoint(incoming);
    key.SetOutgoingPoint(outgoing);
    key.SetType(type);
    return key;
}

std::vector<std::vector<PropertyValue>> SevenValuesOfEach()
{
    using Values = std::vector<PropertyValue>;
    const auto points = []<class T>(T) {
        return Values{T{0, 1},         T{-2.5f, 3},    T{1e30f, -1e30f},  T{1e-30f, 0.1f},
                      T{100, -333.3f}, T{16777216, 7}, T{-0.0f, 1.0f / 3}};
    };
    std::vector<Values> all = {
        {0, 7, -7, kLast, kFirst, 1000001, -1},
        {0u, 7u, 4294967295u, 2147483648u, 1u, 100u, 4000000000u},
        {static_cast<unsigned char>(0), static_cast<unsigned char>(200), static_cast<unsigned char>(255),
         static_cast<unsigned char>(1), static_cast<unsigned char>(128), static_cast<unsigned char>(250),
         static_cast<unsigned char>(3)},
        {0.0f, 0.1f, -1e30f, 3.4e38f, 1e-42f, -7.25f, 16777216.0f},
        {0.0, 0.1, -1e300, 1.7e308, 5e-324, 1.0 / 3, 9007199254740993.0},
        {false, true, true, false, true, false, true},
        {Scale3D{100, 100, 100}, Scale3D{0.1, 1.0 / 3, -5}, Scale3D{0, 0, 0}, Scale3D{1e20, 1e-20, 1},
         Scale3D{16777217, 50, 200}, Scale3D{-1, -2, -3}, Scale3D{99.9999999999, 100, 100}},
        {Orientation3D{0, 0, 0}, Orientation3D{350, 10, 359.99f}, Orientation3D{10, 90, -90},
         Orientation3D{180, 270, 720}, Orientation3D{0, 90, 0}, Orientation3D{-1e-6f, 0, 1},
         Orientation3D{45, 44, 43}},
        {KyColorRGBA_32f{0, 0, 0, 0}, KyColorRGBA_32f{1, 0.5f, 0.25f, 1}, KyColorRGBA_32f{-1, 2, 3, 4},
         KyColorRGBA_32f{0.1f, 0.2f, 0.3f, 0.4f}, KyColorRGBA_32f{1e9f, 1, 1, 1}, KyColorRGBA_32f{0, 0, 0, 1},
         KyColorRGBA_32f{1, 1, 1, 0}},
        points(Point2D()),
        points(Point3D()),
        points(KyVector<2, float>()),
        points(KyVector<3, float>()),
    };
    all.emplace_back();
    for (int i = 0; i < 7; ++i)
        all.back().emplace_back(KyID::Generate());
    return all;
}

std::shared_ptr<PropertyManager> OddCurve::Manager() const
{
    auto manager = PropertyManager::Create();
    const PropertyValue &value = keys.FirstByTime().Value();
    if (isSpatial)
        manager->CreateSpatialProperty("odd", value, PropertyManager::Type::Animatable, nullptr);
    else
        manager->CreateProperty("odd", value, PropertyManager::Type::Animatable, nullptr);
    manager->KeyFrames("odd") = keys;
    return manager;
}

std::vector<int> OddCurve::Times() const
{
    std::set<int> times;
    const auto add = [&times](std::int64_t time) {
        if (time >= kFirst && time <= kLast)
            times.insert(static_cast<int>(time));
    };
    const std::vector<int> places = keys.Locations();
    for (std::size_t i = 0; i < places.size(); ++i) {
        const std::int64_t place = places[i];
        for (const int beside : {-1, 0, 1})
            add(place + beside);
        const std::int64_t span = i + 1 < places.size() ? places[i + 1] - place : 0;
        for (std::int64_t part = 1; part < 50; ++part)
            add(place + span * part / 50);
    }
    return {times.begin(), times.end()};
}

std::vector<OddCurve> OddCurves()
{
    std::vector<OddCurve> curves;
    AddEachAlternative(curves);
    AddTemporalHandles(curves);
    AddPaths<Point2D>(curves, "2D", KeyFrameList::SpatialDataType::Spatial2D);
    AddPaths<Point3D>(curves, "3D", KeyFrameList::SpatialDataType::Spatial3D);
    return curves;
}

} // namespace marlet::test
