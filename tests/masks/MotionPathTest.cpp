#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>

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

TEST(PathPoint, StaysLockedWhenItIsLinearNoMore)
{
    const auto point = PathPoint::Create(0, 0, {});
    EXPECT_TRUE(point->IsLinear() && !point->IsLocked());
    point->SetLinear(false);
    EXPECT_FALSE(point->IsLocked());
    point->SetLinear(true);
    EXPECT_TRUE(point->IsLocked());
    point->SetLinear(false);
    EXPECT_TRUE(point->IsLocked());
    EXPECT_FALSE(point->IsLinear());
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
    path.Points().pop_back();
    EXPECT_FALSE(path.IsClosed());
    AddPoints(path, 1);
    EXPECT_TRUE(path.IsClosed());
}

TEST(MotionPath, PassesOverEmptyEntries)
{
    MotionPath path;
    AddPoints(path, 2);
    path.Points().insert(path.Points().begin() + 1, nullptr);
    path.SetClosed(true);
    EXPECT_FALSE(path.IsClosed());
    AddPoints(path, 1);
    path.SetClosed(true);
    MotionPath read;
    read.Deserialize(path.Serialize());
    for (const MotionPath &copy : {MotionPath(path), read}) {
        EXPECT_EQ(copy.Points().Count(), 3u);
        EXPECT_TRUE(copy.IsClosed());
    }
}

TEST(MotionPath, CopiesDeeplyWithNewIDs)
{
    const auto path = OddPath();
    MotionPath assigned;
    assigned = *path;
    for (const MotionPath &copy : {MotionPath(*path), assigned}) {
        EXPECT_NE(copy.ID(), path->ID());
        EXPECT_TRUE(copy.ParentID().IsNull());
        EXPECT_TRUE(copy.IsClosed());
        ASSERT_EQ(copy.Points().Count(), 3u);
        const PathPoint &point = *copy.Points()[1];
        const PathPoint &original = *path->Points()[1];
        EXPECT_NE(point.ID(), original.ID());
        EXPECT_EQ(point.ParentPathID(), copy.ID());
        EXPECT_FALSE(point.IsLinear());
        EXPECT_TRUE(point.IsLocked());
        EXPECT_EQ(point.Animation().Serialize(), original.Animation().Serialize());
        EXPECT_NE(point.Animation().KeyFrames("position").Identifiers(),
                  original.Animation().KeyFrames("position").Identifiers());
    }
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
        {"<Point Version=\"0\"", "<Point", "Point is missing attribute Version\n"},
        {"<Locked>0</Locked>", "", "Missing element\nLocked"},
        {"Version=\"0\"", "Version=\"1\"",
         "The project file was saved by a newer version of the application than this one."},
    };
    for (const auto &c : kCases) {
        EXPECT_THAT([&] { MotionPath().Deserialize(FromUtf8(Replaced(text, c.what, c.by))); },
                    testing::ThrowsMessage<std::exception>(c.words));
    }
}

TEST(MotionPath, NamesThePropertyThatAPointLacks)
{
    const std::string text = Text(*OddPath());
    for (const std::string name : {"rightHandle", "leftHandle", "position"}) {
        const std::string renamed = Replaced(Replaced(text, "<" + name, "<other"), "</" + name, "</other");
        EXPECT_THAT([&] { MotionPath().Deserialize(FromUtf8(renamed)); },
                    testing::Throws<ProjectException>(testing::Property(&ProjectException::Detail, name)));
    }
}

} // namespace
