#include "ToolTest.h"

namespace marlet::test
{

namespace
{

class ParentingTest : public ToolTest
{
protected:
    /// Changes the parent of "Child" in "a.xml".
    ToolRun Parent(const std::string &change) const
    {
        return Run({"parent", "a.xml", "a.xml", "--composition=Main", "--layer=Child", "--frame=10", change});
    }

    std::string Position() const
    {
        const std::string line = Run({"value", "a.xml", "--composition=Main", "--layer=Child",
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
    ASSERT_EQ(Parent("--to=Parent").exitCode, 0);
    EXPECT_EQ(Position(), "[70,0,0]}\n");
    ASSERT_EQ(Parent("--remove").exitCode, 0);
    EXPECT_EQ(Position(), "[100,0,0]}\n");
    EXPECT_EQ(Parent("--remove").err, "marlet: a.xml: Layer \"Child\" has no parent\n");
}

TEST_F(ParentingTest, RefusesACircle)
{
    const auto middle = AddPoint(u"Middle");
    middle->SetParentLayer(AddPoint(u"Child"));
    AddPoint(u"Grandchild")->SetParentLayer(middle);
    Save("a.xml");
    for (const char *descendant : {"Child", "Grandchild"}) {
        const ToolRun run = Parent(std::string("--to=") + descendant);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "marlet: a.xml: Layer \"Child\" would become its own parent\n");
    }
}

} // namespace

} // namespace marlet::test
