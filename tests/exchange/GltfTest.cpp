#include <tests/checks/CheckedProject.h>
#include <tests/project/ClipFiles.h>

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/JsonText.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/operations/OperationException.h>

#include <pugixml.hpp>

#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <cmath>
#include <sstream>

namespace marlet::test
{

namespace
{

using testing::UnorderedElementsAre;
using Vector = std::array<double, 3>;
using Point = kytl::matl::KyPoint<3, float>;

constexpr double kMetresPerPixel = 0.01;

const ExchangeFormat &Gltf()
{
    return *ExchangeFormat::ByName("gltf");
}

/// A camera that flies by and looks at its target, and a plate that hangs on a point which turns and moves.
struct FlyBy : CheckedProject {
    std::shared_ptr<CameraLayer> camera = CameraLayer::Create(u"Camera", 50, 900, 900, 0);

    FlyBy()
    {
        camera->SetEndFrame(100);
        camera->SetParentComposition(composition);
        camera->SetAutoOrientation(AutoOrient::TowardsTarget);
        composition->Layers().Add(camera);
        Move(*camera, "position", 0, Point{-300, 100, 800});
        Move(*camera, "position", 2000, Point{400, 200, 600});
        Move(*camera, "target", 0, Point{10, 20, -30});

        layer->SetDimensions(LayerDimensions::ThreeD);
        layer->SetParentLayer(point);
        layer->SetEndFrame(100);
        layer->Animation().StaticValue("anchorPoint") = Point{5, 6, 0};
        Move(*layer, "scale", 0, Scale3D{100, 100, 100});
        Move(*layer, "scale", 1000, Scale3D{250, 50, 100});
        Move(*layer, "rotationY", 0, 0.f);
        Move(*layer, "rotationY", 3000, 540.f);
        point->SetDimensions(LayerDimensions::ThreeD);
        Move(*point, "rotationX", 500, 10.f);
        Move(*point, "rotationX", 1500, 80.f);
        Move(*point, "position", 0, Point{0, 0, 0});
        Move(*point, "position", 4000, Point{100, -50, 25});
    }

    static void Move(AbstractLayer &moved, const char *property, int time, const PropertyValue &value)
    {
        moved.Animation().KeyFrames(property).Set(time, value);
    }
};

std::vector<std::string> LossesIn(const LoadReport &report)
{
    std::vector<std::string> losses;
    for (const LoadEntry &entry : report.Entries())
        if (entry.severity == LoadEntry::Severity::Loss)
            losses.push_back(entry.what);
    return losses;
}

/// A document as another program's reader understands it.
class ReadDocument
{
public:
    explicit ReadDocument(const NarrowString &text)
    {
        QFile file(QString::fromStdU16String(files_.Path("scene.gltf")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.data(), static_cast<qint64>(text.size()));
        file.close();
        const std::string dump = ToUtf8(files_.Path("scene.assxml"));
        QProcess reader;
        reader.start(ASSIMP, {"dump", file.fileName(), QString::fromStdString(dump)});
        EXPECT_TRUE(reader.waitForFinished(60'000));
        EXPECT_EQ(reader.exitCode(), 0) << reader.readAll().toStdString();
        EXPECT_TRUE(document_.load_file(dump.c_str()));
    }

    /// Where a node has a point of its own at a time in milliseconds.
    Vector Placed(const std::string &node, double time, Vector point) const
    {
        const auto channel = Find("NodeAnim", "node", node);
        const std::vector<double> size = KeyAt(channel.child("ScalingKeyList"), time);
        const std::vector<double> turn = KeyAt(channel.child("RotationKeyList"), time);
        const std::vector<double> place = KeyAt(channel.child("PositionKeyList"), time);
        for (std::size_t i = 0; i < 3; ++i)
            point[i] *= size[i];
        const Vector axis{turn[0], turn[1], turn[2]};
        const Vector once = Cross(axis, point);
        const Vector twice = Cross(axis, once);
        for (std::size_t i = 0; i < 3; ++i)
            point[i] += 2 * (turn[3] * once[i] + twice[i]) + place[i];
        return point;
    }

    std::vector<double> Corners(const std::string &node) const
    {
        const int mesh = Find("Node", "name", node).child("MeshRefs").text().as_int();
        auto found = document_.select_node("//MeshList").node().first_child();
        for (int i = 0; i < mesh; ++i)
            found = found.next_sibling();
        return Numbers(found.child("Positions"));
    }

private:
    static Vector Cross(const Vector &a, const Vector &b)
    {
        return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    }

    pugi::xml_node Find(const char *tag, const char *attribute, const std::string &value) const
    {
        const std::string path = std::string("//") + tag + "[@" + attribute + "='" + value + "']";
        const pugi::xml_node node = document_.select_node(path.c_str()).node();
        EXPECT_TRUE(node) << path;
        return node;
    }

    static std::vector<double> Numbers(const pugi::xml_node &node)
    {
        std::istringstream text(node.text().get());
        std::vector<double> numbers{std::istream_iterator<double>(text), {}};
        numbers.resize(std::max<std::size_t>(numbers.size(), 4));
        return numbers;
    }

    /// On the straight line between the keys around; turns have a key wherever they are asked for.
    static std::vector<double> KeyAt(const pugi::xml_node &keys, double time)
    {
        pugi::xml_node before = keys.first_child();
        for (const pugi::xml_node key : keys)
            if (key.attribute("time").as_double() <= time + 1e-3)
                before = key;
        std::vector<double> numbers = Numbers(before);
        const pugi::xml_node after = before.next_sibling();
        const double start = before.attribute("time").as_double();
        if (!after || time <= start)
            return numbers;
        const double part = (time - start) / (after.attribute("time").as_double() - start);
        const std::vector<double> next = Numbers(after);
        for (std::size_t i = 0; i < numbers.size(); ++i)
            numbers[i] += (next[i] - numbers[i]) * part;
        return numbers;
    }

    ClipFiles files_;
    pugi::xml_document document_;
};

TEST(GltfTest, MovesForOtherReadersAsInTheComposition)
{
    const FlyBy scene;
    LoadReport report;
    ExchangeOptions options;
    options.composition = u"Main";
    options.load.report = &report;
    const NarrowString text = Gltf().Write(scene.project, options);
    EXPECT_THAT(LossesIn(report), UnorderedElementsAre("Title is a rectangle without picture",
                                                       "Picture is a rectangle without effects, masks"));

    const ReadDocument read(text);
    const std::vector<std::pair<std::shared_ptr<AbstractLayer>, Point>> points = {
        {scene.camera, {0, 0, 0}},  {scene.camera, {0, 0, -100}}, {scene.camera, {0, 100, 0}},
        {scene.layer, {0, 0, 0}},   {scene.layer, {64, 0, 0}},    {scene.layer, {0, 32, 0}},
        {scene.layer, {64, 32, 0}}, {scene.point, {10, 20, 30}}};
    for (int frame = 0; frame < 100; ++frame)
        for (const auto &[layer, point] : points) {
            const Point world =
                layer->WorldTransformationAtTime(frame * 40, scene.project, true).TransformPoint(point);
            const Vector placed = read.Placed(
                ToUtf8(layer->Name()), frame * 40,
                {point.X * kMetresPerPixel, point.Y * kMetresPerPixel, point.Z * kMetresPerPixel});
            const Vector expected{world.X * kMetresPerPixel, world.Y * kMetresPerPixel,
                                  world.Z * kMetresPerPixel};
            for (std::size_t i = 0; i < 3; ++i)
                ASSERT_NEAR(placed[i], expected[i], 2e-4)
                    << ToUtf8(layer->Name()) << " in frame " << frame << ", coordinate " << i;
        }
    EXPECT_EQ(read.Corners("Picture"), (std::vector<double>{0, 0, 0, 0.64, 0, 0, 0.64, 0.32, 0, 0, 0.32, 0}));

    // Half of 720 pixels, seen from 900.
    const Json lens = ParseJson(text)["cameras"][0]["perspective"];
    EXPECT_NEAR(lens["yfov"].get<double>(), 2 * std::atan2(360, 900), 1e-9);
    EXPECT_NEAR(lens["aspectRatio"].get<double>(), 16.0 / 9, 1e-9);
}

TEST(GltfTest, TellsOfLensesAndLayersThatItCannotSay)
{
    FlyBy scene;
    FlyBy::Move(*scene.camera, "zoom", 0, 900.f);
    scene.camera->SetDepthOfField(true);
    scene.layer->SetEndFrame(50);
    scene.layer->SetVisible(false);
    scene.layer->SetBlendMode(Blend{1});
    scene.layer->Animation().StaticValue("opacity") = 50.f;
    scene.solid->SetColor({4, -1, 0.5f, 1});
    LoadReport report;
    ExchangeOptions options;
    options.composition = u"Main";
    options.layer = u"Camera";
    options.load.report = &report;
    const Json text = ParseJson(Gltf().Write(scene.project, options));
    EXPECT_THAT(LossesIn(report),
                UnorderedElementsAre("Camera keeps the field of view of the first frame",
                                     "Camera has no depth of field", "Title is a rectangle without picture",
                                     "Picture is a rectangle without effects, masks, opacity, blending",
                                     "Picture is hidden, which a node is not",
                                     "Picture is seen before its first frame and behind its last one, too"));
    const Json color = text["materials"][1]["pbrMetallicRoughness"]["baseColorFactor"];
    EXPECT_NEAR(color[0].get<double>(), 1, 1e-9);
    EXPECT_EQ(color[1], 0);
    EXPECT_NEAR(color[2].get<double>(), 0.2140, 1e-4);

    options.layer = u"Picture";
    EXPECT_THROW(Gltf().Write(scene.project, options), OperationException);
    options = {};
    options.composition = u"Inner";
    EXPECT_NE(Gltf().Write(scene.project, options).find("\"yfov\""), NarrowString::npos);
}

} // namespace

} // namespace marlet::test
