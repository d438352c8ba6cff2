#include "ToolTest.h"

#include <filesystem>
#include <set>

namespace marlet::test
{

namespace
{

using testing::IsEmpty;

/// What the tool prints for programs, against the schemas that tell of it.
using JsonFormsTest = ToolTest;

} // namespace

TEST_F(JsonFormsTest, EveryCommandPrintsWhatItsSchemaSays)
{
    ASSERT_EQ(Shell("cp '" MARLET_EXAMPLES "'/*.xml '" MARLET_EXAMPLES "'/paper.png . &&"
                    "\"$MARLET\" clip clip.mov --frames 12 &&"
                    "\"$MARLET\" new clip.xml --media clip.mov --at=-128,0 &&"
                    "\"$MARLET\" new show.xml --showcase clip.mov --picture paper.png &&"
                    "\"$MARLET\" edit cut.xml ours.xml split Interview --at 70 &&"
                    "\"$MARLET\" edit cut.xml theirs.xml move 'Video 1@120' --by 10 &&"
                    "head -c 9000 titles.xml >cut-off.xml &&"
                    "sed 's/clip.mov</gone\\/clip.mov</' clip.xml >moved.xml &&"
                    "sed '0,/<Name>/s//<Unknown>1<\\/Unknown><Name>/' cut.xml >odd.xml")
                  .exitCode,
              0);
    const std::pair<std::string, std::vector<std::string>> calls[] = {
        {"info", {"orbit.xml", "titles.xml", "cut.xml", "show.xml", "clip.xml", "odd.xml"}},
        {"check",
         {"orbit.xml", "titles.xml", "odd.xml", "show.xml --repair mended.xml",
          "cut.xml --repair mended.xml --dry-run"}},
        {"timeline", {"cut.xml", "cut.xml --at 98", "show.xml"}},
        {"diff", {"cut.xml ours.xml", "orbit.xml titles.xml", "/dev/null cut.xml"}},
        {"merge", {"cut.xml ours.xml theirs.xml merged.xml"}},
        {"value", {"orbit.xml --composition Orbit --layer Moon --property position --times 0,100"}},
        {"matrix",
         {"orbit.xml --composition Orbit --layer 'Moon Beacon' --frames 0..3",
          "cut.xml --object 'Lower Third'"}},
        {"postfilter", {"titles.xml --composition Opening --layer Credits"}},
        {"media", {"clip.mov", "--index clip.mov", "missing.mov"}},
        {"decode", {"clip.mov --frame 3 -o frame.png"}},
        {"samples", {"clip.mov --start 0 --count 100 -o sound.wav"}},
        {"track",
         {"clip.xml tracked.xml --composition clip.mov --layer clip.mov --tracker Tracker",
          "clip.mov --at=-128,0"}},
        {"image", {"paper.png", "missing.png"}},
        {"timecode", {"--frame 1800 --rate 29.97", "--text 00:00:01:00 --rate 25"}},
        {"plugins", {""}},
        {"fonts", {"", "'DejaVu Sans'"}},
        {"clip", {"other.mov --frames 3"}},
        {"edit",
         {"cut.xml out.xml split Interview --at 70 --dry-run",
          "cut.xml out.xml move 'Video 1@120' --by 10 --dry-run"}},
        {"convert", {"--formats", "cut.xml cut.edl"}},
        {"recover", {"orbit.xml mended.xml", "cut-off.xml mended.xml"}},
        {"relink", {"moved.xml out.xml --search ."}},
    };
    std::set<std::string> told;
    for (const auto &[command, lines] : calls) {
        told.insert(command);
        for (const std::string &line : lines)
            EXPECT_EQ(Shell("mkdir -p out; \"$MARLET\" " + command + " " + line +
                            " --json >lines 2>err; test -s lines && cat lines >>out/" + command + ".json")
                          .exitCode,
                      0)
                << command << " " << line;
    }
    EXPECT_THAT(
        Shell("'" MARLET_PYTHON "' '" MARLET_VALIDATE "' '" MARLET_JSON_SCHEMAS "' out/*.json 2>&1").out,
        IsEmpty());
    // None is left out above, and there is no schema of a command that there is not.
    std::set<std::string> schemas;
    for (const auto &file : std::filesystem::directory_iterator(MARLET_JSON_SCHEMAS))
        schemas.insert(file.path().stem().stem().string());
    EXPECT_EQ(schemas, told);
    for (const std::string &line : Run({"help"}).OutLines())
        if (line.rfind("  ", 0) == 0) {
            const std::string command = line.substr(2, line.find(' ', 2) - 2);
            if (Run({"help", command}).out.find("\n  --json ") != std::string::npos) {
                EXPECT_EQ(told.count(command), 1u) << command;
            }
        }
}

} // namespace marlet::test
