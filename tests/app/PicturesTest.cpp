#include "ToolTest.h"

#include <marlet/project/ProjectMetadata.h>

#include <QDomDocument>

#include <algorithm>

namespace marlet::test
{

namespace
{

using testing::AllOf;
using testing::HasSubstr;

/// What the tool draws and compares.
class PicturesTest : public ToolTest
{
protected:
    /// The text of a file that is whole XML.
    std::string ReadXml(const std::string &name) const
    {
        const std::string text = Read(name);
        QDomDocument document;
        EXPECT_TRUE(document.setContent(QByteArray::fromStdString(text))) << name;
        return text;
    }
};

TEST_F(PicturesTest, DiffSpeaksOfLayersKeyFramesAndPlaces)
{
    const auto front = AddPoint(u"Front");
    const auto middle = AddPoint(u"Middle");
    const auto back = AddPoint(u"Back");
    front->Animation().KeyFrames("rotationZ").Set(0, 10.f);
    front->Animation().KeyFrames("rotationZ").Set(1000, 20.f);
    const std::string before = Save("before.xml");
    front->Animation().KeyFrames("rotationZ").Set(1000, 25.f);
    front->Animation().KeyFrames("rotationZ").Set(2000, 30.f);
    middle->SetStartFrame(7);
    composition_->Layers().remove(back);
    composition_->Layers().push_front(back);
    AddPoint(u"New");
    const std::string after = Save("after.xml");

    EXPECT_EQ(Run({"diff", before, before}).out, "no differences\n");
    const std::string place = "composition \"Main\", null point ";
    EXPECT_EQ(Run({"diff", before, after}).out,
              "~ " + place + "\"Front\", property rotationZ, key frame at 1000 ms: value 20 -> 25\n" + "+ " +
                  place + "\"Front\", property rotationZ, key frame at 2000 ms added\n" + "~ " + place +
                  "\"Middle\": StartFrame 0 -> 7\n" + "+ " + place + "\"New\" added\n" + "^ " + place +
                  "\"Back\": moved from place 3 to 1\n" + "5 differences\n");
    EXPECT_THAT(Run({"diff", before, after, "--json"}).OutLines().at(2),
                HasSubstr("\"what\":\"StartFrame\",\"before\":\"0\",\"after\":\"7\""));
}

TEST_F(PicturesTest, DiffKnowsItemsOfTheMetadataByTheirKeys)
{
    project_->Metadata().SetIntegerValue({}, 0, 10);
    project_->Metadata().SetIntegerValue({}, 1, 20);
    const std::string before = Save("before.xml");
    project_->Metadata().RemoveIntegerValue({}, 0);
    EXPECT_THAT(Run({"diff", before, Save("after.xml")}).out,
                testing::MatchesRegex("- metadata, int32_t: item [0-9]+ removed\n1 difference\n"));
}

TEST_F(PicturesTest, TheTreeMarksReferencesThatLeadNowhere)
{
    const auto parent = AddPoint(u"Parent");
    AddPoint(u"Child")->SetParentLayer(parent->ID());
    AddPoint(u"Orphan")->SetParentLayer(kytl::KyID::Generate());
    ASSERT_EQ(Run({"tree", Save("a.xml"), "-o", Path("tree.svg")}).exitCode, 0);
    EXPECT_THAT(ReadXml("tree.svg"),
                AllOf(HasSubstr("Child has the parent Parent"), HasSubstr("parent missing: ")));
}

/// A parent that is missing, and key frames between which there is nothing.
TEST_F(PicturesTest, WhatCannotBeHadIsLeftOutAndTold)
{
    AddPoint(u"Sound");
    AddPoint(u"Orphan")->SetParentLayer(kytl::KyID::Generate());
    KeyFrameList &keys = AddPoint(u"Mixed")->Animation().KeyFrames("rotationZ");
    keys.Set(0, 1.f);
    keys.Set(1000, 2);
    const std::string file = Save("a.xml");
    const std::string told = "a.xml: warning: layer \"Orphan\" of composition \"Main\" is left out: ";

    const ToolRun frame =
        Run({"frame", "a.xml", "--composition=Main", "--from=4", "--to=5", "-o", Path("frames")});
    EXPECT_EQ(frame.exitCode, 0) << frame.err;
    EXPECT_THAT(frame.err, HasSubstr(told));
    EXPECT_EQ(std::count(frame.err.begin(), frame.err.end(), '\n'), 2);

    ASSERT_EQ(Run({"report", "a.xml", "-o", Path("page")}).exitCode, 0);
    EXPECT_THAT(Read("page/index.html"),
                AllOf(HasSubstr("Left out of these pictures"), HasSubstr("mixed types")));
    ASSERT_EQ(
        Run({"curve", file, "--composition=Main", "--layer=Mixed", "--property=rotationZ", "-o", "c.svg"})
            .exitCode,
        0);
    EXPECT_THAT(ReadXml("c.svg"), HasSubstr("2 key frames, without a value in places"));
}

/// Key frames of a straight line: the picture's own scale is told by its labels.
TEST_F(PicturesTest, ACurveGoesThroughItsKeyFrames)
{
    const auto point = AddPoint(u"<Point> & \"more\"");
    KeyFrameList &keys = point->Animation().KeyFrames("rotationZ");
    keys.Set(0, 0.f);
    keys.Set(1000, 100.f);
    const std::string project = Save("a.xml");
    const std::vector<std::string> words{
        "curve", project, "--composition", "Main", "--layer", point->ID().ToNarrowString(), "--property"};
    const auto draw = [&](const char *property) {
        std::vector<std::string> all = words;
        all.insert(all.end(), {property, "-o", Path("curve.svg")});
        return Run(all);
    };
    ASSERT_EQ(draw("rotationZ").exitCode, 0);
    // 400 steps from the lower left to the upper right, 5 percent clear of the frame on both sides.
    EXPECT_THAT(ReadXml("curve.svg"), AllOf(HasSubstr("-5<"), HasSubstr("105<"), HasSubstr("0 ms: 0<"),
                                            HasSubstr("1000 ms: 100<"), HasSubstr("points=\"75,")));
    EXPECT_EQ(draw("sideways").exitCode, 1);
    EXPECT_EQ(draw("position").exitCode, 0);
}

TEST_F(PicturesTest, AReportNeedsNothingButItsFolder)
{
    AddPoint(u"<script>alert(1)</script>")->Animation().KeyFrames("rotationZ").Set(0, 1.f);
    ASSERT_EQ(Run({"report", Save("a.xml"), "-o", Path("report")}).exitCode, 0);
    const std::string page = Read("report/index.html");
    EXPECT_THAT(page, AllOf(HasSubstr("composition-001.jpg"), HasSubstr("curve-002.svg"),
                            HasSubstr("tree-003.svg"), HasSubstr("Nothing is missing")));
    EXPECT_THAT(page, AllOf(testing::Not(HasSubstr("<script")), testing::Not(HasSubstr("://"))));
    EXPECT_EQ(Run({"report", Path("a.xml"), "-o", Path("a.xml")}).exitCode, 1);
}

} // namespace

} // namespace marlet::test
