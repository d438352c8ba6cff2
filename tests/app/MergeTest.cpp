#include "ToolTest.h"

namespace marlet::test
{

namespace
{

using testing::HasSubstr;

/// A base with two null points, a version in which one is renamed, and one in which both are.
class MergeTest : public ToolTest
{
protected:
    MergeTest()
    {
        const auto front = AddPoint(u"Front");
        const auto back = AddPoint(u"Back");
        Save("base.xml");
        front->SetName(u"Ours");
        Save("ours.xml");
        back->SetName(u"Theirs");
        front->SetName(u"Front");
        Save("theirs.xml");
        front->SetName(u"Other");
        Save("both.xml");
    }
};

TEST_F(MergeTest, TakesBothSides)
{
    const ToolRun run = Run({"merge", "base.xml", "ours.xml", "theirs.xml", "out.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(Run({"diff", "ours.xml", "out.xml"}).out,
              "~ composition \"Main\", null point \"Back\": Name Back -> Theirs\n1 difference\n");
}

TEST_F(MergeTest, TellsOfConflictsInWhichOursStays)
{
    const ToolRun run = Run({"merge", "base.xml", "ours.xml", "both.xml", "ours.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "! composition \"Main\", null point \"Front\": Name: ours Ours, theirs Other\n");
    EXPECT_THAT(run.err, HasSubstr("1 conflict"));
    EXPECT_THAT(Read("ours.xml"), testing::AllOf(HasSubstr("<Name>Ours<"), HasSubstr("<Name>Theirs<")));
    EXPECT_THAT(Run({"merge", "base.xml", "ours.xml", "both.xml", "out.xml", "--json"}).out,
                HasSubstr("\"before\":\"Front\",\"after\":\"Other\""));
}

TEST_F(MergeTest, WarnsOfChangesThatDoNotGoTogether)
{
    const auto parent = composition_->Layers().front();
    composition_->Layers().back()->SetParentLayer(parent);
    Save("child.xml");
    composition_->Layers().back()->RemoveParentLayer();
    composition_->Layers().pop_front();
    Save("orphan.xml");
    const ToolRun run = Run({"merge", "both.xml", "child.xml", "orphan.xml", "out.xml"});
    EXPECT_EQ(run.exitCode, 1) << run.out;
    EXPECT_THAT(run.err, HasSubstr("out.xml: warning: layer \"Theirs\""));
    EXPECT_THAT(run.err, HasSubstr("out.xml: 1 problem that neither side had\n"));
}

TEST_F(MergeTest, AFileThatIsNoProjectLeavesTheOutputAlone)
{
    Write("broken.xml", "<Project");
    const std::string before = Read("ours.xml");
    const ToolRun run = Run({"merge", "base.xml", "ours.xml", "broken.xml", "ours.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("broken.xml"));
    EXPECT_EQ(Read("ours.xml"), before);
}

/// As the README says.
TEST_F(MergeTest, ServesGit)
{
    const ToolRun run =
        Shell("git init -q -b main . && git config user.name N && git config user.email E &&"
              "git config merge.marlet.driver \"$MARLET merge %O %A %B %A --name %P\" &&"
              "git config diff.marlet.command 'f() { '\"$MARLET\"' diff \"$2\" \"$5\"; }; f' &&"
              "echo 'film.xml merge=marlet diff=marlet' > .gitattributes &&"
              "cp base.xml film.xml && git add film.xml .gitattributes && git commit -qm 1 &&"
              "git checkout -q -b other && cp theirs.xml film.xml && git diff &&"
              "git commit -qam 2 && git checkout -q main && cp ours.xml film.xml &&"
              "git commit -qam 3 && git merge -q other -m 4");
    if (run.exitCode == 127)
        GTEST_SKIP() << "there is no git";
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("null point \"Back\": Name Back -> Theirs"));
    EXPECT_THAT(Read("film.xml"), testing::AllOf(HasSubstr("<Name>Ours<"), HasSubstr("<Name>Theirs<")));

    const ToolRun conflict = Shell("git checkout -q other && cp both.xml film.xml && git commit -qam 5 &&"
                                   "git checkout -q main && git merge -q other -m 6");
    EXPECT_EQ(conflict.exitCode, 1);
    EXPECT_THAT(conflict.err, HasSubstr("film.xml: 1 conflict, in which ours stays\n"));
}

} // namespace

} // namespace marlet::test
