#include "ToolTest.h"

#include <marlet/project/ImageAsset.h>

#include <QImage>

#include <algorithm>
#include <filesystem>

namespace marlet::test
{

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class RelinkTest : public ToolTest
{
protected:
    /// An image of so many pixels, or a file of bytes that are none for 0.
    void Put(const std::string &name, int pixels)
    {
        fs::create_directories(fs::path(Path(name)).parent_path());
        QImage image(std::max(pixels, 1), 1, QImage::Format_RGB32);
        image.fill(Qt::gray);
        if (pixels == 0)
            Write(name, "no picture");
        else
            ASSERT_TRUE(image.save(QString::fromStdString(Path(name)), "png"));
    }
};

TEST_F(RelinkTest, FindsFilesByNameAndByWhatTheyAre)
{
    const struct {
        std::string name;
        std::vector<std::pair<const char *, int>> files;
        std::string found;   ///< or empty
        std::string listing; ///< the lines behind that of the asset
    } cases[] = {
        {"plain.png", {{"x/plain.png", 1}}, "x/plain.png", ""},
        {"Case.PNG", {{"x/case.png", 1}}, "x/case.png", ""},
        {"same-case.png", {{"w/Same-Case.png", 1}, {"x/same-case.png", 2}}, "x/same-case.png", ""},
        {"folder.png", {{"shots/folder.png", 1}, {"other/folder.png", 2}}, "shots/folder.png", ""},
        {"copies.png", {{"x/copies.png", 3}, {"y/copies.png", 3}}, "x/copies.png", ""},
        {"unclear.png",
         {{"x/unclear.png", 4}, {"y/unclear.png", 5}},
         "",
         "          found/x/unclear.png: 4 x 1, % bytes\n          found/y/unclear.png: 5 x 1, % bytes\n"},
        {"nowhere.png", {}, "", ""},
        {"junk.png",
         {{"x/junk.png", 0}},
         "",
         "          not found/x/junk.png: it cannot be read as an image\n"},
        {"readable.png",
         {{"shots/readable.png", 0}, {"x/Readable.png", 6}},
         "x/Readable.png",
         "          not found/shots/readable.png: it cannot be read as an image\n"},
    };
    std::string listing;
    for (const auto &one : cases) {
        const std::string before = "/gone/shots/" + one.name;
        project_->Assets().All().Add(ImageAsset::Create(FromUtf8(before)));
        for (const auto &[path, pixels] : one.files)
            Put("found/" + std::string(path), pixels);
        listing += !one.found.empty()          ? "found     "
                   : one.name == "unclear.png" ? "ambiguous "
                                               : "missing   ";
        listing += "\"" + one.name + "\" " + before +
                   (one.found.empty() ? "\n" : " -> found/" + one.found + "\n") + one.listing;
    }
    Save("a.xml");
    const ToolRun run = Run({"relink", "a.xml", "b.xml", "--search", "found"});
    EXPECT_EQ(run.exitCode, 1);
    for (const char *file : {"found/x/unclear.png", "found/y/unclear.png"})
        listing.replace(listing.find('%'), 1, std::to_string(fs::file_size(Path(file))));
    EXPECT_EQ(run.out, listing);
    EXPECT_EQ(run.err, "marlet: a.xml: 3 files not found\n");
    for (const auto &one : cases)
        EXPECT_THAT(Read("b.xml"),
                    HasSubstr("<Filename>" + (one.found.empty() ? "/gone/shots/" + one.name
                                                                : Path("found") + "/" + one.found)));
    EXPECT_EQ(Run({"relink", "a.xml", "c.xml", "--search", "no-folder"}).exitCode, 1);
}

TEST_F(RelinkTest, TakesAClipThatHasWhatIsShownOfIt)
{
    Run({"clip", "clip.mov", "--frames", "3", "--size", "160x120"});
    Run({"clip", "long.mov", "--frames", "9", "--size", "160x120"});
    ASSERT_EQ(Run({"samples", "clip.mov", "--start", "0", "--count", "99", "-o", "sound.wav"}).exitCode, 0);
    ASSERT_EQ(Run({"new", "film.xml", "--media", "long.mov"}).exitCode, 0);
    const auto put = [this](const char *file, const std::string &folder) {
        fs::create_directories(Path(folder));
        fs::copy(Path(file), Path(folder + "/long.mov"));
    };
    put("sound.wav", "sound");
    put("film.xml", "all/junk");
    put("sound.wav", "all/sound");
    put("clip.mov", "all/short");
    put("long.mov", "all/x");
    fs::remove(Path("long.mov"));

    const ToolRun sound = Run({"relink", "film.xml", "out.xml", "--search", "sound"});
    EXPECT_EQ(sound.exitCode, 1);
    EXPECT_THAT(sound.out, HasSubstr("not sound/long.mov: there is no picture in it\n"));
    EXPECT_THAT(Run({"info", "out.xml"}).out, HasSubstr("missing"));

    const ToolRun all = Run({"relink", "film.xml", "out.xml", "--search", "all"});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_THAT(all.out, HasSubstr("-> all/x/long.mov\n"
                                   "          not all/junk/long.mov: it cannot be read as a media file\n"
                                   "          not all/sound/long.mov: there is no picture in it\n"));
    EXPECT_THAT(Run({"info", "out.xml"}).out, Not(HasSubstr("missing")));

    const ToolRun shorter = Run({"relink", "film.xml", "out.xml", "--search", "all/short"});
    EXPECT_EQ(shorter.exitCode, 1);
    EXPECT_THAT(shorter.out,
                testing::ContainsRegex("-> all/short/long.mov\n          but it is shorter: 3 frames, "
                                       "where [0-9]+ are asked for\n"));
    const ToolRun json = Run({"relink", "film.xml", "out.xml", "--search", "all/short", "--json"});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(json.OutLines().size(), 1u);
    EXPECT_THAT(json.out, testing::AllOf(testing::StartsWith("{\"kind\":\"found\",\"id\":\""),
                                         HasSubstr("\"doubt\":\"it is shorter"), testing::EndsWith("]}\n")));
    EXPECT_EQ(Run({"relink", "film.xml", "out.xml", "--asset", "x", "--to", "y", "--json"}).exitCode, 2);
}

} // namespace

} // namespace marlet::test
