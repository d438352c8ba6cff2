#pragma once

#include <cstdint>
#include <vector>

namespace marlet::tool
{

/// A made-up clip of a patch of texture that moves over a still background, by fractions of a pixel, with a
/// tone. What follows the patch can be measured, since its path is known.
class TestClip
{
public:
    static constexpr int kFramesPerSecond = 25;
    static constexpr int kSampleRate = 48000;
    static constexpr int kChannels = 2;

    struct Position {
        double x; ///< pixels from the middle of the picture
        double y; ///< upwards
    };

    TestClip(int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }
    /// The middle of the patch.
    Position PathAt(int frame) const;
    /// Rows of B, G, R, A without padding.
    std::vector<unsigned char> Picture(int frame) const;
    /// The sound of one frame: interleaved samples.
    std::vector<std::int16_t> Sound(int frame) const;

private:
    int width_;
    int height_;
    std::vector<unsigned char> background_;
};

} // namespace marlet::tool
