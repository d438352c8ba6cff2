#include "ToolTest.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/PointLayer.h>

namespace marlet::test
{

namespace
{

class ParentingTest : public ToolTest
{
protected:
    ToolRun Parent(const std::string &file, const std::string &out, const std::string &layer,
                   const std::string &change) const
    {
        return Run({"parent", file, out, "--composition=Main", "--layer", layer, "--frame=10", change});
    }

    std::string Position(const std::string &file, const std::string &layer) const
    {
        const std::string line = Run({"value", file, "--composition=Main", "--layer", layer,
                                      "--property=position", "--times=0", "--json"})
                                     .out;
        return line.substr(line.find('['));
    }
};

TEST_F(ParentingTest, KeepsTheLayerInPlaceBothWays)
{
    AddPoint(u"Parent", {30, 0, 0});
    AddPoint(u"Child", {100, 0, 0});
    Save("a.xml");
    ASSERT_EQ(Parent("a.xml", "b.xml", "Child", "--to=Parent").exitCode, 0);
    EXPECT_EQ(Position("a.xml", "Child"), "[100,0,0]}\n");
    EXPECT_EQ(Position("b.xml", "Child"), "[70,0,0]}\n");
    ASSERT_EQ(Parent("b.xml", "b.xml", "Child", "--remove").exitCode, 0);
    EXPECT_EQ(Position("b.xml", "Child"), "[100,0,0]}\n");
    EXPECT_EQ(Parent("b.xml", "c.xml", "Child", "--remove").err,
              "marlet: b.xml: Layer \"Child\" has no parent\n");
}

TEST_F(ParentingTest, RefusesACircle)
{
    AddPoint(u"A", {});
    AddPoint(u"B", {})->SetParentLayer(AddPoint(u"C", {}));
    Save("a.xml");
    ASSERT_EQ(Parent("a.xml", "b.xml", "C", "--to=A").exitCode, 0);
    for (const char *descendant : {"A", "B", "C"}) {
        const ToolRun run = Parent("b.xml", "c.xml", "A", std::string("--to=") + descendant);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "marlet: b.xml: Layer \"A\" would become its own parent\n");
    }
    EXPECT_EQ(FileNames().size(), 2u);
}

} // namespace

} // namespace marlet::test
