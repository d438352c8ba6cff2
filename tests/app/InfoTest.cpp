#include "ToolTest.h"

#include <marlet/project/BinFolder.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/SolidAsset.h>

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

class InfoTest : public ToolTest
{
protected:
    InfoTest()
    {
        project_->SetName(u"Quote \" and\nline \u00E9");
        const auto folder = BinFolder::Create(u"Folder");
        project_->Assets().Bin().Folders().Add(folder);
        const auto solid = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 64, 32, PAR::Square);
        project_->Assets().All().Add(solid);
        folder->Assets().Add(solid);
        child_->SetParentLayer(parent_);
        child_->SetVisible(false);
        KeyFrameList &keys = child_->Animation().KeyFrames("position");
        keys.Add(KeyFrame(0, kytl::matl::KyPoint<3, float>{}));
        keys.Add(KeyFrame(40, kytl::matl::KyPoint<3, float>{1, 0, 0}));
        child_->Animation().Expression("rotationZ") = "time * 2";
        project_->Metadata().SetStringValue({}, 0, u"a \"b\" <c> & d\n");
        project_->Metadata().SetIntegerValue({}, 0, -5);
        Save("a.xml");
    }

    std::shared_ptr<PointLayer> parent_ = AddPoint(u"Parent");
    std::shared_ptr<PointLayer> child_ = AddPoint(u"Child");
};

TEST_F(InfoTest, WritesOneObjectALineForEverything)
{
    const std::string out = Run({"info", "a.xml", "--json"}).out;
    const std::string child = child_->ID().ToNarrowString();
    EXPECT_THAT(out, HasSubstr("\",\"name\":\"Quote \\\" and\\nline \u00E9\",\"color_bit_depth\":1000}\n"));
    EXPECT_THAT(out, HasSubstr("\n{\"kind\":\"layer\",\"composition\":\"" +
                               composition_->ID().ToNarrowString() + "\",\"position\":1,\"id\":\"" + child +
                               "\",\"name\":\"Child\",\"type\":\"point\",\"dimensions\":\"2d\",\"start\":0,"
                               "\"end\":100,\"parent\":\"" +
                               parent_->ID().ToNarrowString() +
                               "\",\"blend\":0,\"visible\":false,\"muted\":false,\"locked\":false,"
                               "\"motion_blur\":false,\"properties\":8}\n"));
    EXPECT_THAT(out, HasSubstr("\n{\"kind\":\"property\",\"layer\":\"" + child +
                               "\",\"name\":\"position\",\"type\":\"KyPoint3_32f\",\"animatable\":true,"
                               "\"spatial\":true,\"default\":false,\"key_frames\":2,\"first_time\":0,"
                               "\"last_time\":40,\"static\":[0,0,0]}\n"));
    EXPECT_THAT(out, HasSubstr(",\"value\":-5}\n"));
    EXPECT_THAT(out, HasSubstr(",\"value\":\"a \\\"b\\\" <c> & d\\n\"}\n"));
}

TEST_F(InfoTest, KeepsEveryObjectOnItsLineForPeople)
{
    const std::string out = Run({"info", "a.xml"}).out;
    for (const char *line : {
             "Project \"Quote \" and\\nline \u00E9\"  ",
             "\n    \"Folder\"  folder\n      \"Red\"  solid, 64x32, colour (1, 0, 0, 1)\n",
             "  2  \"Child\"  point, 2d, frames 0 to 100, on \"Parent\", hidden\n",
             " position             KyPoint3_32f  2 key frames, 0 to 40 ms, spatial\n",
             " rotationZ            float         0, expression time * 2\n",
             "\n1 folder, 2 assets (0 offline), 1 composition, 2 layers, 0 effects, 0 masks, 0 trackers, 16 "
             "properties "
             "(1 animated), 2 key frames, 1 expression, 2 metadata values\n",
         })
        EXPECT_THAT(out, HasSubstr(line));
}

} // namespace

} // namespace marlet::test
