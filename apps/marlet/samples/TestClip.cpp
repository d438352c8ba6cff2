#include "TestClip.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace marlet::tool
{

namespace
{

constexpr double kPi = 3.14159265358979323846;

/// From 0 to 1, seen from the middle of the patch: waves in all directions, which repeat nowhere. What looks
/// alike in all directions can be followed best.
double Texture(double x, double y)
{
    constexpr int kWaves = 12;
    double sum = 0;
    for (int i = 0; i < kWaves; ++i) {
        const double direction = 2.4 * i;
        const double perPixel = 0.25 + 0.05 * i;
        sum += std::sin(perPixel * (x * std::cos(direction) + y * std::sin(direction)) + i * i);
    }
    return 0.5 + 0.06 * sum;
}

double Background(double x, double y)
{
    return 0.35 + 0.1 * std::sin(x / 60) * std::cos(y / 45);
}

/// Blue, green and red.
constexpr double kPatchColour[] = {0.85, 1, 0.9};
constexpr double kBackgroundColour[] = {1, 0.9, 0.8};

double Mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

unsigned char Byte(double level)
{
    return static_cast<unsigned char>(std::lround(std::clamp(level, 0.0, 1.0) * 255));
}

/// How much of a pixel a patch covers that reaches so far from its middle.
double Coverage(double distance, double reach)
{
    return std::clamp(reach - std::abs(distance) + 0.5, 0.0, 1.0);
}

} // namespace

TestClip::TestClip(int width, int height)
    : width_(width),
      height_(height),
      background_(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 255)
{
    unsigned char *pixel = background_.data();
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column, pixel += 4)
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = Byte(Background(column, row) * kBackgroundColour[channel]);
}

/// Both ways have a length that the other one's is no multiple of.
TestClip::Position TestClip::PathAt(int frame) const
{
    return {-0.2 * width_ * std::cos(2 * kPi * frame / 190), 0.2 * height_ * std::sin(2 * kPi * frame / 130)};
}

std::vector<unsigned char> TestClip::Picture(int frame) const
{
    const Position path = PathAt(frame);
    const double middleX = width_ / 2 + path.x;
    const double middleY = height_ / 2 - path.y;
    const double reach = 0.2 * std::min(width_, height_);
    std::vector<unsigned char> picture = background_;
    const int firstRow = std::max(0, static_cast<int>(middleY - reach) - 1);
    const int lastRow = std::min(height_ - 1, static_cast<int>(middleY + reach) + 1);
    const int firstColumn = std::max(0, static_cast<int>(middleX - reach) - 1);
    const int lastColumn = std::min(width_ - 1, static_cast<int>(middleX + reach) + 1);
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int column = firstColumn; column <= lastColumn; ++column) {
            const double x = column - middleX;
            const double y = row - middleY;
            const double coverage = Coverage(x, reach) * Coverage(y, reach);
            unsigned char *pixel =
                &picture[4 * (static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                              static_cast<std::size_t>(column))];
            const double level = Texture(x, y);
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = Byte(Mix(pixel[channel] / 255.0, level * kPatchColour[channel], coverage));
        }
    }
    return picture;
}

std::vector<std::int16_t> TestClip::Sound(int frame) const
{
    constexpr int kSamplesPerFrame = kSampleRate / kFramesPerSecond;
    constexpr double kLoudness = 8000;
    constexpr double kPitches[kChannels] = {440, 660};
    std::vector<std::int16_t> samples;
    for (int i = 0; i < kSamplesPerFrame; ++i) {
        const double seconds = (static_cast<double>(frame) * kSamplesPerFrame + i) / kSampleRate;
        for (const double pitch : kPitches)
            samples.push_back(
                static_cast<std::int16_t>(std::lround(kLoudness * std::sin(2 * kPi * pitch * seconds))));
    }
    return samples;
}

} // namespace marlet::tool
