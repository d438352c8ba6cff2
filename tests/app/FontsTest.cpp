#include "ToolTest.h"

#include <tests/support/FontFolder.h>

namespace marlet::test
{

TEST_F(ToolTest, ListsTheFontsOfTheMachine)
{
    const FontFolder folder;
    folder.Add("Sans", "Zebras");
    EXPECT_EQ(Run({"fonts"}).out, folder.path + "\n  \"Zebras Sans\"  family \"Zebras Sans\", " +
                                      folder.path + "/ZebrasSans.ttf\n");
    EXPECT_EQ(Run({"fonts", "Zebras Sans", "--json"}).OutLines().at(1),
              "{\"kind\":\"font\",\"full_name\":\"Zebras Sans\",\"family\":\"Zebras Sans\",\"file\":\"" +
                  folder.path + "/ZebrasSans.ttf\"}");
    EXPECT_EQ(Run({"fonts", "Zebra"}).err,
              "marlet: There is no font family \"Zebra\", only \"Zebras Sans\"\n");
}

} // namespace marlet::test
