// The tool's encoder: what it refuses, and that a file comes into being as a whole or not at all.

#include <encode/Encoder.h>

#include <output/Failure.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include <unistd.h>

using namespace marlet::tool;
namespace fs = std::filesystem;

namespace
{

std::string MessageOf(const fs::path &path, const EncoderOptions &options)
{
    try {
        Encoder(path, options).Finish();
        return "none";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.Subject(), path);
        return failure.what();
    }
}

} // namespace

TEST(Encoder, RefusesWhatCannotBeWrittenAndLeavesNothingBehind)
{
    const fs::path folder = fs::temp_directory_path() / ("marlet-encoder-" + std::to_string(::getpid()));
    fs::create_directory(folder);
    const EncoderOptions plain{.width = 32, .height = 16};
    EncoderOptions sound = plain;
    sound.sampleRate = 8000;
    EncoderOptions empty = plain;
    empty.height = 0;
    EXPECT_EQ(MessageOf(folder / "clip.xyz", plain), "the name has no ending of a video file");
    EXPECT_EQ(MessageOf(folder / "clip.mp4", sound), "this kind of file cannot hold pcm_s16le");
    EXPECT_EQ(MessageOf(folder / "clip.mov", empty), "a picture has a width and a height above 0");
    EXPECT_EQ(MessageOf(folder / "missing" / "clip.mov", plain), "No such file or directory");

    std::ofstream(folder / "old.avi") << "old";
    {
        Encoder unfinished(folder / "old.avi", plain);
        unfinished.AddFrame(std::vector<unsigned char>(32 * 16 * 4).data(), 32 * 4);
        EXPECT_THROW(unfinished.AddSamples(nullptr, 0), Failure);
    }
    EXPECT_EQ(fs::file_size(folder / "old.avi"), 3u);
    EXPECT_THAT(std::vector<fs::path>(fs::directory_iterator(folder), {}), testing::SizeIs(1));
    fs::remove_all(folder);
}
