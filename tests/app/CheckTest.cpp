#include "ToolTest.h"

#include <marlet/project/BinFolder.h>
#include <marlet/project/ImageAsset.h>

#include <algorithm>

namespace marlet::test
{

namespace
{

using CheckTest = ToolTest;

const kytl::KyID kNowhere{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

TEST_F(CheckTest, FindsOneProblemOfEachKind)
{
    const auto image = ImageAsset::Create(FromUtf8(Path("gone.png")));
    image->SetParentFolderID(kNowhere);
    project_->Assets().All().Add(image);
    const auto folder = BinFolder::Create(u"Stray");
    folder->SetParentFolderID(kNowhere);
    project_->Assets().Bin().Folders().Add(folder);

    AddPoint(u"Orphan")->SetParentLayer(kNowhere);
    const auto first = AddPoint(u"First");
    const auto second = AddPoint(u"Second");
    first->SetParentLayer(second);
    second->SetParentLayer(first);
    AddPoint(u"Exile")->SetParentComposition(kNowhere);
    const auto typed = AddPoint(u"Typed");
    typed->Animation().StaticValue("rotationZ") = 5;
    typed->Animation().KeyFrames("position").Add(KeyFrame(40, 1.5f));
    Save("a.xml");

    const ToolRun run = Run({"check", "a.xml", "--json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "marlet: a.xml: 9 problems\n");
    const std::string id = kNowhere.ToNarrowString();
    const auto line = [](const std::string &kind, const std::string &severity, const std::string &place,
                         const std::string &what) {
        return "{\"kind\":\"" + kind + "\",\"severity\":\"" + severity + "\",\"place\":\"" + place +
               "\",\"what\":\"" + what + "\"";
    };
    const auto layer = [](const std::string &name) {
        return "layer \\\"" + name + "\\\" of composition \\\"Main\\\"";
    };
    const std::string expected[] = {
        line("dangling ID", "warning", "folder \\\"Stray\\\"", "the parent folder " + id + " does not exist"),
        line("dangling ID", "warning", "asset \\\"gone.png\\\"",
             "the parent folder " + id + " does not exist"),
        line("missing file", "warning", "asset \\\"gone.png\\\"", "its file is not there"),
        line("dangling ID", "error", layer("Orphan"), "the parent layer " + id + " does not exist"),
        line("parent circle", "error", layer("First"), "its parents run in a circle"),
        line("parent circle", "error", layer("Second"), "its parents run in a circle"),
        line("dangling ID", "error", layer("Exile"), "the parent composition " + id + " does not exist"),
        line("unexpected type", "error", layer("Typed") + ", property position",
             "the key frame at 40 ms is of type float in place of KyPoint3_32f"),
        line("unexpected type", "error", layer("Typed") + ", property rotationZ",
             "the static value is of type int32_t in place of float"),
        line("folder", "note", "asset \\\"Main\\\"", "it is in no folder"),
        "{\"kind\":\"sums\",\"problems\":9,\"errors\":6,\"losses\":0,\"warnings\":3,\"notes\":1}",
    };
    EXPECT_EQ(run.OutLines().size(), std::size(expected));
    for (const std::string &start : expected)
        EXPECT_THAT(run.OutLines(), testing::Contains(testing::StartsWith(start)));
}

/// Lines and columns by counting in the text.
TEST_F(CheckTest, TellsOfPlacesAsCompilersDo)
{
    const auto layer = AddPoint(u"Orphan");
    layer->SetParentLayer(kNowhere);
    Save("a.xml");
    std::string text = Read("a.xml");
    text.insert(text.find("<Layers"), "<Odd/>");
    Write("a.xml", text);
    const auto place = [&](const std::string &mark) {
        const std::size_t at = text.find(mark);
        const std::size_t lineStart = text.rfind('\n', at) + 1;
        return "a.xml:" +
               std::to_string(1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n')) + ":" +
               std::to_string(at - lineStart + 1) + ": ";
    };
    const std::vector<std::string> lines = Run({"check", "a.xml"}).OutLines();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], place("<CompositionAsset ") + "note: asset \"Main\": it is in no folder [folder]");
    EXPECT_THAT(lines[1], testing::StartsWith(place("<Odd/>")));
    EXPECT_THAT(lines[1], testing::HasSubstr("Odd"));
    EXPECT_EQ(lines[2], place("<PointLayer ") +
                            "error: layer \"Orphan\" of composition \"Main\": the parent layer " +
                            kNowhere.ToNarrowString() + " does not exist [dangling ID]");
    EXPECT_THAT(lines.back(), testing::StartsWith("1 error, "));
    EXPECT_THAT(Run({"check", "a.xml", "--json"}).out,
                testing::HasSubstr(",\"offset\":" + std::to_string(text.find("<PointLayer ")) + ","));

    Write("b.xml", text.substr(0, text.find("<Odd/>")));
    const ToolRun cut = Run({"check", "b.xml"});
    EXPECT_EQ(cut.exitCode, 1);
    EXPECT_THAT(cut.out, testing::AllOf(testing::StartsWith("b.xml:"), testing::HasSubstr(": error: ")));
}

/// What the load and the checks both see.
TEST_F(CheckTest, TellsEachFactOnce)
{
    AddPoint(u"One");
    AddPoint(u"Two");
    project_->Assets().All().Add(ImageAsset::Create(u"/gone/picture.png"));
    Save("a.xml");
    const std::string whole = Read("a.xml");
    const std::string one = composition_->Layers().front()->ID().ToNarrowString();
    const std::string two = composition_->Layers().back()->ID().ToNarrowString();
    const struct {
        std::string from;
        std::string to;
        std::string once; ///< in one line of all
    } cases[] = {
        {"<ParentLayerID>" + kytl::KyID().ToNarrowString(), "<ParentLayerID>" + kNowhere.ToNarrowString(),
         kNowhere.ToNarrowString()},
        {"<ID>" + two, "<ID>" + one, "ID is that of another one|has its ID"},
        {"<EndFrame>", "<EndFrame>x", "EndFrame is no number"},
        {"<position Type=\"0\"", "<position Type=\"7\"", "Type is 7"},
        {"", "", "the file is offline|its file is not there"},
    };
    for (const auto &[from, to, once] : cases) {
        SCOPED_TRACE(once);
        Write("b.xml", std::string(whole).replace(whole.find(from), from.size(), to));
        std::size_t told = 0;
        for (const std::string &line : Run({"check", "b.xml"}).OutLines()) {
            const std::size_t bar = once.find('|');
            told += line.find(once.substr(0, bar)) != line.npos ||
                    (bar != once.npos && line.find(once.substr(bar + 1)) != line.npos);
        }
        EXPECT_EQ(told, 1u);
    }
}

TEST_F(CheckTest, RepairsWhatIsSafeAndTellsBeforehand)
{
    AddPoint(u"Orphan")->SetParentLayer(kNowhere);
    Save("a.xml");
    const std::string before = Read("a.xml");
    const std::string what = "layer \"Orphan\" of composition \"Main\": the parent layer " +
                             kNowhere.ToNarrowString() + " does not exist: clears the parent layer\n";
    const ToolRun dry = Run({"check", "a.xml", "--repair", "b.xml", "--dry-run"});
    EXPECT_EQ(dry.exitCode, 1);
    EXPECT_THAT(dry.out, testing::EndsWith("\nwould repair: " + what));
    EXPECT_THAT(FileNames(), testing::ElementsAre("a.xml"));

    const ToolRun run = Run({"check", "a.xml", "--repair", "b.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, testing::EndsWith("\nrepaired: " + what + "wrote b.xml, 1 repair\n"));
    EXPECT_EQ(Run({"check", "b.xml"}).exitCode, 0);
    EXPECT_THAT(
        Run({"check", "a.xml", "--json", "--repair", "b.xml"}).OutLines(),
        testing::AllOf(
            testing::Each(testing::AllOf(testing::StartsWith("{"), testing::EndsWith("}"))),
            testing::Contains("{\"kind\":\"repaired\",\"path\":\"b.xml\",\"repairs\":1,\"left\":0}")));
    EXPECT_EQ(Run({"check", "a.xml", "--repair", "./a.xml"}).exitCode, 2);
    EXPECT_EQ(Read("a.xml"), before);
    EXPECT_EQ(Run({"check", "a.xml", "--dry-run"}).exitCode, 2);
}

TEST_F(CheckTest, FindsIDsThatRepeat)
{
    project_->Assets().All().Add(composition_);
    const auto layer = AddPoint(u"Twin");
    composition_->Layers().Add(layer);
    Save("a.xml");
    const std::string out = Run({"check", "a.xml"}).out;
    for (const std::string &line :
         {"asset \"Main\": another one before it has its ID " + composition_->ID().ToNarrowString(),
          "layer \"Twin\" of composition \"Main\": another one before it has its ID " +
              layer->ID().ToNarrowString()})
        EXPECT_THAT(out, testing::HasSubstr("warning: " + line + " [repeated ID]\n"));
}

TEST_F(CheckTest, TellsWhereASaveChangesTheFile)
{
    AddPoint(u"Moved", {12, 0, 0});
    Save("a.xml");
    Run({"save", "a.xml", "b.xml"});
    const std::string saved = Read("b.xml");
    const std::size_t number = saved.find("12\" Y=");
    ASSERT_NE(number, std::string::npos);
    const auto line =
        std::to_string(1 + std::count(saved.begin(), saved.begin() + std::ptrdiff_t(number), '\n'));

    EXPECT_EQ(Run({"check", "b.xml"}).out.find("A save changes"), std::string::npos);
    Write("c.xml", std::string(saved).replace(number, 2, "12,5"));
    EXPECT_THAT(Run({"check", "c.xml"}).out,
                testing::HasSubstr("\nA save changes the file, first in line " + line + "\n"));
    EXPECT_THAT(Run({"check", "c.xml", "--json"}).out,
                testing::HasSubstr("\n{\"kind\":\"change\",\"line\":" + line + "}\n{\"kind\":\"sums\","));
}

TEST_F(CheckTest, KnowsTheTypesOfAClassEvenIfTheFileHasOthersThroughout)
{
    AddPoint(u"Odd");
    std::string text = ToUtf8(project_->Serialize());
    const std::size_t start = text.find("<rotationX");
    std::string property = text.substr(start, text.find("</rotationX>") - start);
    const std::size_t length = property.size();
    for (std::size_t at = 0; (at = property.find("float", at)) != std::string::npos;)
        property.replace(at, 5, "double");
    Write("a.xml", text.replace(start, length, property));
    EXPECT_EQ(Run({"check", "a.xml"}).err, "marlet: a.xml: 2 problems\n");
}

} // namespace

} // namespace marlet::test
