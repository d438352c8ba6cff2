#include "ToolTest.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/SolidAsset.h>

#include <algorithm>

namespace marlet::test
{

namespace
{

using namespace project;

class InfoTest : public ToolTest
{
protected:
    InfoTest()
    {
        project_->SetName(u"Quote \" and\nline \u00E9");
        folder_ = BinFolder::Create(u"Folder");
        folder_->SetParentFolderID(project_->Assets().Bin().ID());
        project_->Assets().Bin().Folders().Add(folder_);
        solid_ = SolidAsset::Create(u"Red", {1, 0, 0, 1}, 64, 32, PAR::Square);
        solid_->SetParentFolderID(folder_->ID());
        project_->Assets().All().Add(solid_);
        folder_->Assets().Add(solid_);
        parent_ = AddPoint(u"Parent", {});
        child_ = AddPoint(u"Child", {});
        child_->SetParentLayer(parent_);
        child_->SetVisible(false);
        KeyFrameList &keys = child_->Animation().KeyFrames("position");
        keys.Add(KeyFrame(0, kytl::matl::KyPoint<3, float>{}));
        keys.Add(KeyFrame(40, kytl::matl::KyPoint<3, float>{1, 0, 0}));
        child_->Animation().Expression("rotationZ") = "time * 2";
        project_->Metadata().SetStringValue({}, 0, u"a \"b\" <c> & d\n");
        project_->Metadata().SetIntegerValue({}, 0, -5);
        project_->Metadata().SetFloatValue({}, 0, 0.5f);
        project_->Metadata().SetBooleanValue({}, 0, true);
        Save("a.xml");
    }

    std::shared_ptr<BinFolder> folder_;
    std::shared_ptr<SolidAsset> solid_;
    std::shared_ptr<PointLayer> parent_;
    std::shared_ptr<PointLayer> child_;
};

TEST_F(InfoTest, WritesOneObjectALineForEverything)
{
    const std::vector<std::string> lines = Run({"info", "a.xml", "--json"}).OutLines();
    const auto count = [&](const std::string &start) {
        return std::count_if(lines.begin(), lines.end(), [&](const std::string &line) {
            return line.compare(0, start.size(), start) == 0;
        });
    };
    const auto has = [&](const std::string &line) {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    EXPECT_EQ(lines.front(), "{\"kind\":\"project\",\"file\":\"a.xml\",\"id\":\"" +
                                 project_->ID().ToNarrowString() +
                                 "\",\"name\":\"Quote \\\" and\\nline \u00E9\",\"color_bit_depth\":1000}");
    EXPECT_EQ(count("{\"kind\":\"folder\""), 2);
    EXPECT_EQ(count("{\"kind\":\"asset\""), 2);
    EXPECT_EQ(count("{\"kind\":\"composition\""), 1);
    EXPECT_EQ(count("{\"kind\":\"layer\""), 2);
    EXPECT_EQ(count("{\"kind\":\"property\""), 16);
    const std::string child = child_->ID().ToNarrowString();
    EXPECT_TRUE(has("{\"kind\":\"folder\",\"id\":\"" + folder_->ID().ToNarrowString() +
                    "\",\"name\":\"Folder\",\"parent\":\"" + project_->Assets().Bin().ID().ToNarrowString() +
                    "\",\"expanded\":false,\"assets\":[\"" + solid_->ID().ToNarrowString() + "\"]}"));
    EXPECT_TRUE(has("{\"kind\":\"layer\",\"composition\":\"" + composition_->ID().ToNarrowString() +
                    "\",\"position\":1,\"id\":\"" + child +
                    "\",\"name\":\"Child\",\"type\":\"point\",\"dimensions\":\"2d\",\"start\":0,\"end\":100,"
                    "\"parent\":\"" +
                    parent_->ID().ToNarrowString() +
                    "\",\"blend\":0,\"visible\":false,\"muted\":false,\"locked\":false,\"motion_blur\":false,"
                    "\"properties\":8}"));
    EXPECT_TRUE(
        has("{\"kind\":\"property\",\"layer\":\"" + child +
            "\",\"name\":\"position\",\"type\":\"KyPoint3_32f\",\"animatable\":true,\"spatial\":true,"
            "\"default\":false,\"key_frames\":2,\"first_time\":0,\"last_time\":40,\"static\":[0,0,0]}"));
    EXPECT_TRUE(has("{\"kind\":\"property\",\"layer\":\"" + child +
                    "\",\"name\":\"rotationZ\",\"type\":\"float\",\"animatable\":true,\"spatial\":false,"
                    "\"default\":true,\"key_frames\":0,\"static\":0,\"expression\":\"time * 2\"}"));
    EXPECT_EQ(
        lines.back(),
        "{\"kind\":\"sums\",\"folders\":1,\"assets\":2,\"offline_assets\":0,\"compositions\":1,"
        "\"layers\":2,\"effects\":0,\"masks\":0,\"properties\":16,\"animated_properties\":1,\"key_frames\":2,"
        "\"expressions\":1,\"metadata\":4}");
}

TEST_F(InfoTest, ListsTheMetadata)
{
    const std::vector<std::string> lines = Run({"info", "a.xml", "--json"}).OutLines();
    std::vector<std::string> values;
    for (const std::string &line : lines)
        if (line.find("{\"kind\":\"metadata\"") == 0)
            values.push_back(line.substr(line.find("\"value\":")));
    EXPECT_EQ(values, (std::vector<std::string>{"\"value\":true}", "\"value\":-5}", "\"value\":0.5}",
                                                "\"value\":\"a \\\"b\\\" <c> & d\\n\"}"}));
}

TEST_F(InfoTest, KeepsEveryObjectOnItsLineForPeople)
{
    const std::string out = Run({"info", "a.xml"}).out;
    EXPECT_EQ(out.find("Project \"Quote \" and\\nline \u00E9\"  "), 0u);
    for (const char *line : {
             "\n  \"Root\"  folder\n    \"Folder\"  folder\n      \"Red\"  solid, 64x32, colour (1, 0, 0, "
             "1)\n",
             "\n  \"Main\"  composition, 1280x720, 100 frames, in no folder\n",
             "  2  \"Child\"  point, 2d, frames 0 to 100, on \"Parent\", hidden\n",
             " position             KyPoint3_32f  2 key frames, 0 to 40 ms, spatial\n",
             " rotationZ            float         0, expression time * 2\n",
             " 6 at their defaults\n",
             "\n1 folder, 2 assets (0 offline), 1 composition, 2 layers, 0 effects, 0 masks, 16 properties "
             "(1 animated), 2 key "
             "frames, "
             "1 expression, 4 metadata values\n",
         })
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
}

} // namespace

} // namespace marlet::test
