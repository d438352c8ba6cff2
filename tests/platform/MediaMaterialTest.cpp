// Real files, with what other readers count in them.

#include "MediaClips.h"

#include <cstdlib>
#include <random>

using namespace clips;

namespace
{

struct Material {
    const char *path;
    int width;
    int frames;
    double frameRate;
    unsigned long long samples;
};

constexpr Material kMaterial[] = {
    {"video/bunny_5p1_audio_1s.mkv", 1280, 25, 25, 48128},
    {"video/cockatoo_yuv444.mp4", 1280, 280, 20, 222383}, // its encoder is named in the first packet alone
    {"video/coin.mov", 568, 242, 30, 354304},             // one more in its header, beyond its edit list
    {"video/plant_handheld.mp4", 320, 36, 45000.0 / 1499, 56320},
    {"video/propeller.3gp", 352, 83, 15, 44160},
    {"video/propeller.mov", 560, 166, 30, 268432},
    {"video/propeller.ogv", 560, 166, 30, 266240},
    {"video/propeller.webm", 560, 166, 30, 267456},
    {"video/puck_inertia.avi", 400, 28, 25, 0},
    {"video/pucks_magnet.ogv", 400, 34, 25, 0},
    {"audio/ambi_piano.flac", 0, 0, 0, 123998},
    {"audio/pluck-pcm8.wav", 0, 0, 0, 3307},
    {"audio/word_debian.mp3", 0, 0, 0, 238447},
    {"audio/word_debian.ogg", 0, 0, 0, 238447},
    {"images/exif/hopper_orientation_6.jpg", 128, 1, 0, 0},
    {"images/gif/aero.gif", 350, 56, 55 / 5.8, 0},
};

void ExpectSameInAnyOrder(const Media &media)
{
    std::vector<Bytes> frames;
    for (int i = 0; i < std::min(media.video->FrameCount(), 100); ++i)
        frames.push_back(media.Frame(i));
    // A decoder of its own for what follows.
    media.file->Sleep();
    ASSERT_EQ(media.file->Wake(), kSuccess);
    std::mt19937 random(5);
    for (int i = 0; i < 12; ++i) {
        const std::size_t number = random() % frames.size();
        ASSERT_EQ(media.Frame(static_cast<int>(number)), frames[number]) << number;
        ASSERT_FALSE(frames[number].empty());
    }
}

} // namespace

TEST(MediaMaterial, IsCountedAsByOtherReadersAndReadInAnyOrder)
{
    const char *folder = std::getenv("MARLET_MATERIAL");
    if (!folder)
        GTEST_SKIP() << "MARLET_MATERIAL is not set";
    for (const Material &material : kMaterial) {
        SCOPED_TRACE(material.path);
        const Media media(std::string(folder) + "/" + material.path);
        ASSERT_EQ(media.code, kSuccess);
        ASSERT_EQ(media.video != nullptr, material.frames > 0);
        ASSERT_EQ(media.audio != nullptr, material.samples > 0);
        if (media.audio) {
            EXPECT_EQ(media.audio->SampleCount(), material.samples);
        }
        if (!media.video)
            continue;
        EXPECT_EQ(media.video->Width(), material.width);
        EXPECT_EQ(media.video->FrameCount(), material.frames);
        EXPECT_NEAR(media.video->FrameRate(), material.frameRate, 1e-9);
        ExpectSameInAnyOrder(media);
    }
}
