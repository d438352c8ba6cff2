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
    const auto line = [](const std::string &kind, const std::string &place, const std::string &what) {
        return "{\"kind\":\"" + kind + "\",\"place\":\"" + place + "\",\"what\":\"" + what + "\"}";
    };
    const auto layer = [](const std::string &name) {
        return "layer \\\"" + name + "\\\" of composition \\\"Main\\\"";
    };
    const std::string expected[] = {
        line("dangling ID", "folder \\\"Stray\\\"", "the parent folder " + id + " does not exist"),
        line("dangling ID", "asset \\\"gone.png\\\"", "the parent folder " + id + " does not exist"),
        line("missing file", "asset \\\"gone.png\\\"", "its file is not there"),
        line("dangling ID", layer("Orphan"), "the parent layer " + id + " does not exist"),
        line("parent circle", layer("First"), "its parents run in a circle"),
        line("parent circle", layer("Second"), "its parents run in a circle"),
        line("dangling ID", layer("Exile"), "the parent composition " + id + " does not exist"),
        line("unexpected type", layer("Typed") + ", property position",
             "the key frame at 40 ms is of type float in place of KyPoint3_32f"),
        line("unexpected type", layer("Typed") + ", property rotationZ",
             "the static value is of type int32_t in place of float"),
        "{\"kind\":\"sums\",\"problems\":9}",
    };
    EXPECT_THAT(run.OutLines(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(CheckTest, FindsIDsThatRepeat)
{
    project_->Assets().All().Add(composition_);
    const auto layer = AddPoint(u"Twin");
    composition_->Layers().Add(layer);
    Save("a.xml");
    const std::string out = Run({"check", "a.xml"}).out;
    EXPECT_THAT(out, testing::StartsWith(
                         "repeated ID     asset \"Main\": " + composition_->ID().ToNarrowString() + "\n"));
    EXPECT_THAT(out, testing::EndsWith("repeated ID     layer \"Twin\" of composition \"Main\": " +
                                       layer->ID().ToNarrowString() + "\n"));
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
    EXPECT_EQ(Run({"check", "c.xml"}).out.find("A save changes the file, first in line " + line + "\n"), 0u);
    EXPECT_EQ(Run({"check", "c.xml", "--json"}).out,
              "{\"kind\":\"change\",\"line\":" + line + "}\n{\"kind\":\"sums\",\"problems\":0}\n");
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
