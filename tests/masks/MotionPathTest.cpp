#include <tests/support/PropertyValuePrinter.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <gmock/gmock.h>

namespace
{

using namespace marlet::project;
using kytl::KyID;
using Point = kytl::matl::KyPoint<2, float>;
using Vector = kytl::matl::KyVector<2, float>;

const KyID kMask = KyID::FromString("0000000a-0000-0000-0000-000000000000");

void AddPoints(MotionPath &path, int count)
{
    for (int i = 0; i < count; ++i)
        path.Points().Add(PathPoint::Create(static_cast<float>(i), 0.5f, path.ID()));
}

std::string Text(const MotionPath &path)
{
    return ToUtf8(path.Serialize());
}

std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// A closed path of three points, with a key frame, on a mask.
std::unique_ptr<MotionPath> OddPath()
{
    auto path = std::make_unique<MotionPath>();
    path->SetParentID(kMask);
    AddPoints(*path, 3);
    path->SetClosed(true);
    PathPoint &point = *path->Points()[1];
    point.SetLinear(false);
    point.SetLocked(true);
    point.Animation().StaticValue("leftHandle") = Vector{-1, 2};
    point.Animation().KeyFrames("position").Add(KeyFrame(40, Point{7, 8}));
    return path;
}

TEST(PathPoint, StartsLinearAndUnlockedWithoutHandles)
{
    const auto point = PathPoint::Create(1.5f, -2, kMask);
    EXPECT_FALSE(point->ID().IsNull());
    EXPECT_EQ(point->ParentPathID(), kMask);
    EXPECT_TRUE(point->IsLinear());
    EXPECT_FALSE(point->IsLocked());
    const PropertyManager &properties = point->Animation();
    EXPECT_THAT(properties.PropertyNames(), testing::ElementsAre("position", "leftHandle", "rightHandle"));
    EXPECT_EQ(properties.StaticValue("position"), PropertyValue(Point{1.5f, -2}));
    for (const char *name : {"leftHandle", "rightHandle"})
        EXPECT_EQ(properties.StaticValue(name), PropertyValue(Vector{}));
    for (const NarrowString &name : properties.PropertyNames()) {
        EXPECT_TRUE(properties.CanAnimate(name.c_str()));
        EXPECT_FALSE(properties.IsSpatial(name.c_str()));
    }
}

TEST(PathPoint, StaysLockedWhenItIsLinearNoMore)
{
    const auto point = PathPoint::Create(0, 0, {});
    point->SetLinear(false);
    EXPECT_FALSE(point->IsLocked());
    point->SetLinear(true);
    EXPECT_TRUE(point->IsLocked());
    point->SetLinear(false);
    EXPECT_TRUE(point->IsLocked());
    EXPECT_FALSE(point->IsLinear());
    point->SetLocked(false);
    EXPECT_FALSE(point->IsLocked());
}

TEST(MotionPath, StartsOpenAndEmpty)
{
    const MotionPath path;
    EXPECT_FALSE(path.ID().IsNull());
    EXPECT_TRUE(path.ParentID().IsNull());
    EXPECT_FALSE(path.IsClosed());
    EXPECT_TRUE(path.Points().IsEmpty());
}

TEST(MotionPath, ClosesWithThreePointsOnly)
{
    MotionPath path;
    AddPoints(path, 2);
    path.SetClosed(true);
    AddPoints(path, 1);
    EXPECT_FALSE(path.IsClosed());
    path.SetClosed(true);
    EXPECT_TRUE(path.IsClosed());
    const auto point = path.Points().back();
    path.Points().pop_back();
    EXPECT_FALSE(path.IsClosed());
    path.Points().Add(point);
    EXPECT_TRUE(path.IsClosed());
    path.SetClosed(false);
    EXPECT_FALSE(path.IsClosed());
}

/// Everything but the IDs is that of the source.
void ExpectCopy(const MotionPath &copy, const MotionPath &source)
{
    EXPECT_NE(copy.ID(), source.ID());
    EXPECT_TRUE(copy.ParentID().IsNull());
    EXPECT_TRUE(copy.IsClosed());
    ASSERT_EQ(copy.Points().Count(), source.Points().Count());
    for (std::size_t i = 0; i < source.Points().size(); ++i) {
        const PathPoint &point = *copy.Points()[i];
        const PathPoint &original = *source.Points()[i];
        EXPECT_NE(point.ID(), original.ID());
        EXPECT_EQ(point.ParentPathID(), copy.ID());
        EXPECT_EQ(original.ParentPathID(), source.ID());
        EXPECT_EQ(point.IsLinear(), original.IsLinear());
        EXPECT_EQ(point.IsLocked(), original.IsLocked());
        EXPECT_EQ(point.Animation().Serialize(), original.Animation().Serialize());
    }
    EXPECT_NE(copy.Points()[1]->Animation().KeyFrames("position").Identifiers(),
              source.Points()[1]->Animation().KeyFrames("position").Identifiers());
}

TEST(MotionPath, CopiesDeeplyWithNewIDs)
{
    const auto path = OddPath();
    const MotionPath copy = *path;
    ExpectCopy(copy, *path);
    MotionPath assigned;
    assigned = *path;
    ExpectCopy(assigned, *path);
    copy.Points()[0]->Animation().StaticValue("position") = Point{9, 9};
    EXPECT_EQ(path->Points()[0]->Animation().StaticValue("position"), PropertyValue(Point{0, 0.5f}));
}

TEST(MotionPath, WritesChildrenInAFixedOrder)
{
    const auto path = OddPath();
    const std::string id = path->ID().ToNarrowString();
    const std::string head = "<MotionPath Version=\"0\">\n"
                             " <ID>" +
                             id +
                             "</ID>\n"
                             " <Closed>1</Closed>\n"
                             " <ParentID>" +
                             path->ParentID().ToNarrowString() +
                             "</ParentID>\n"
                             " <Points>\n"
                             "  <Point Version=\"0\">\n"
                             "   <ID>" +
                             path->Points()[0]->ID().ToNarrowString() +
                             "</ID>\n"
                             "   <Linear>1</Linear>\n"
                             "   <Locked>0</Locked>\n"
                             "   <ParentPathID>" +
                             id +
                             "</ParentPathID>\n"
                             "   <PropertyManager Version=\"0\">\n"
                             "    <position Type=\"0\" Spatial=\"0\">\n";
    EXPECT_THAT(Text(*path), testing::StartsWith(head));
    EXPECT_THAT(Text(MotionPath()), testing::EndsWith(" <Points/>\n</MotionPath>\n"));
}

TEST(MotionPath, ReadsWhatItWroteInPlaceOfWhatItHad)
{
    MotionPath path;
    for (const std::string &text : {Text(*OddPath()), Text(MotionPath())}) {
        AddPoints(path, 4);
        path.Deserialize(FromUtf8(text));
        EXPECT_EQ(Text(path), text);
    }
    AddPoints(path, 4);
    path.Deserialize(FromUtf8(Replaced(Replaced(Text(path), "<Points>", "<Was>"), "</Points>", "</Was>")));
    EXPECT_TRUE(path.Points().IsEmpty());
}

TEST(MotionPath, KeepsAFlagThatItsPointsDoNotSupport)
{
    MotionPath path;
    path.Deserialize(FromUtf8(Replaced(Text(path), "<Closed>0", "<Closed>1")));
    EXPECT_FALSE(path.IsClosed());
    EXPECT_THAT(Text(path), testing::HasSubstr("<Closed>1</Closed>"));
    AddPoints(path, 3);
    EXPECT_TRUE(path.IsClosed());
}

TEST(MotionPath, FailsWithTheWordsForWhatIsMissing)
{
    const std::string text = Text(*OddPath());
    const struct {
        const char *what;
        const char *by;
        const char *words;
    } kCases[] = {
        {"</MotionPath>", "", "Wrong tag name\nMotionPath"},
        {" Version=\"0\"", "", "MotionPath is missing attribute Version\n"},
        {"<Closed>1</Closed>", "", "Missing element\nClosed"},
        {"<Closed>1", "<Closed>true",
         "bad lexical cast: source type value could not be interpreted as target"},
        {"<ParentID>0000000a-0000-0000-0000-000000000000</ParentID>", "", "Missing element\nParentID"},
        {"<Point Version=\"0\"", "<Point", "Point is missing attribute Version\n"},
        {"<Linear>1</Linear>", "", "Missing element\nLinear"},
        {"<Locked>0</Locked>", "", "Missing element\nLocked"},
        {"Version=\"0\"", "Version=\"1\"",
         "The project file was saved by a newer version of the application than this one."},
    };
    for (const auto &c : kCases) {
        std::string words;
        try {
            MotionPath().Deserialize(FromUtf8(Replaced(text, c.what, c.by)));
        } catch (const std::exception &e) {
            words = e.what();
        }
        EXPECT_EQ(words, c.words);
    }
}

TEST(MotionPath, NamesThePropertyThatAPointLacks)
{
    const std::string text = Text(*OddPath());
    const std::size_t manager = text.find("   <PropertyManager");
    const std::string end = "</PropertyManager>\n";
    const std::size_t managerEnd = text.find(end) + end.size();
    const auto missing = [](const std::string &changed) {
        try {
            MotionPath().Deserialize(FromUtf8(changed));
        } catch (const ProjectException &e) {
            EXPECT_EQ(e.Code(), 9);
            return e.Detail();
        }
        return NarrowString();
    };
    EXPECT_EQ(missing(text.substr(0, manager) + text.substr(managerEnd)), "position");
    for (const char *name : {"rightHandle", "leftHandle", "position"}) {
        const std::string renamed =
            Replaced(Replaced(text, std::string("<") + name, "<other"), std::string("</") + name, "</other");
        EXPECT_EQ(missing(renamed), name);
    }
}

} // namespace
