#include "ToolTest.h"

#include <tests/support/FontFolder.h>

namespace marlet::test
{

namespace
{

using FontsTest = ToolTest;

TEST_F(FontsTest, ListsFamiliesAndTheFacesOfOne)
{
    const FontFolder folder;
    folder.Add("Sans", "Zebras");
    folder.Add("Sans-Bold", "Zebras");
    EXPECT_EQ(Run({"fonts"}).out, folder.Path() + "\n  \"Zebras Sans\"  family \"Zebras Sans\", " +
                                      folder.Path() + "/ZebrasSans.ttf\n");
    const auto lines = Run({"fonts", "Zebras Sans", "--json"}).OutLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2], "{\"kind\":\"font\",\"full_name\":\"Zebras Sans Bold\",\"family\":\"Zebras Sans\","
                        "\"file\":\"" +
                            folder.Path() + "/ZebrasSans-Bold.ttf\"}");
    const ToolRun unknown = Run({"fonts", "Zebra"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_EQ(unknown.err, "marlet: There is no font family \"Zebra\", only \"Zebras Sans\"\n");
}

} // namespace

} // namespace marlet::test
