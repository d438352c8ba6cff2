#include "FilterInput.h"

#include <QColor>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace marlet::tool
{

using namespace project;

namespace
{

using Levels = std::array<unsigned char, 256>;
/// Red, green, blue; from 0 to 1.
using Light = std::array<float, 3>;

/// Changes the pixels of a picture, each handed over as one that is not premultiplied.
template <class Change> void ForEachPixel(Surface &surface, Change change)
{
    // Neighbours are often alike, and most of all where there is nothing.
    QRgb before = 0;
    QRgb after = qPremultiply(change(0));
    const int width = surface.picture.width();
    for (int y = 0; y < surface.picture.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(surface.picture.scanLine(y));
        for (QRgb *pixel = row; pixel != row + width; ++pixel) {
            if (*pixel != before) {
                before = *pixel;
                after = qPremultiply(change(qUnpremultiply(before)));
            }
            *pixel = after;
        }
    }
}

unsigned char Byte(float level)
{
    return static_cast<unsigned char>(std::clamp(level + 0.5f, 0.f, 255.f));
}

/// What a channel's five properties make of each level.
Levels LevelsOf(const FilterInput &input, const std::string &channel)
{
    const auto level = [&](const char *name) {
        return static_cast<float>(std::clamp(input.Value<int>((channel + name).c_str()), 0, 255));
    };
    const float black = level("InputBlack");
    const float range = std::max(level("InputWhite") - black, 1.f);
    const float gamma = std::clamp(input.Number((channel + "Gamma").c_str()), 0.1f, 10.f);
    const float outputBlack = level("OutputBlack");
    const float outputRange = level("OutputWhite") - outputBlack;
    Levels levels;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const float stretched = std::clamp((static_cast<float>(i) - black) / range, 0.f, 1.f);
        levels[i] = Byte(outputBlack + std::pow(stretched, 1 / gamma) * outputRange);
    }
    return levels;
}

float Luminance(const Light &light)
{
    return 0.299f * light[0] + 0.587f * light[1] + 0.114f * light[2];
}

/// One of the three wheels: what it adds to a colour.
struct Wheel {
    Wheel(const FilterInput &input, const std::string &tones)
    {
        const float hue = std::fmod(std::fmod(input.Number((tones + "Hue").c_str()), 360.f) + 360.f, 360.f);
        const float saturation =
            std::clamp(input.Number((tones + "Saturation").c_str()), -100.f, 100.f) / 200;
        const float lightness = std::clamp(input.Number((tones + "Lightness").c_str()), -100.f, 100.f) / 200;
        const QColor color = QColor::fromHsvF(std::min(hue / 360, 0.9999f), 1, 1);
        const Light pure{color.redF(), color.greenF(), color.blueF()};
        const float gray = (pure[0] + pure[1] + pure[2]) / 3;
        for (std::size_t i = 0; i < tint.size(); ++i)
            tint[i] = (pure[i] - gray) * saturation + lightness;
    }

    Light tint{};
};

} // namespace

void RenderLevels(Surface &surface, const FilterInput &input)
{
    const Levels all = LevelsOf(input, "rgb");
    const Levels red = LevelsOf(input, "red");
    const Levels green = LevelsOf(input, "green");
    const Levels blue = LevelsOf(input, "blue");
    const Levels alpha = LevelsOf(input, "alpha");
    const auto through = [](const Levels &levels, int level) {
        return levels[static_cast<std::size_t>(level)];
    };
    ForEachPixel(surface, [&](QRgb pixel) {
        return qRgba(through(all, through(red, qRed(pixel))), through(all, through(green, qGreen(pixel))),
                     through(all, through(blue, qBlue(pixel))), through(alpha, qAlpha(pixel)));
    });
}

void RenderColorBalance(Surface &surface, const FilterInput &input)
{
    const Wheel shadows(input, "shadows");
    const Wheel midtones(input, "midtones");
    const Wheel highlights(input, "highlights");
    const float saturation = std::clamp(input.Number("saturation"), 0.f, 200.f) / 100;
    const float mix = std::clamp(input.Number("mix"), 0.f, 100.f) / 100;
    const bool keepLuminance = input.Value<bool>("keepLuminance");
    ForEachPixel(surface, [&](QRgb pixel) {
        const Light before{static_cast<float>(qRed(pixel)) / 255, static_cast<float>(qGreen(pixel)) / 255,
                           static_cast<float>(qBlue(pixel)) / 255};
        const float gray = Luminance(before);
        const float dark = (1 - gray) * (1 - gray);
        const float bright = gray * gray;
        Light after{};
        for (std::size_t i = 0; i < after.size(); ++i)
            after[i] = gray + (before[i] - gray) * saturation + dark * shadows.tint[i] +
                       (1 - dark - bright) * midtones.tint[i] + bright * highlights.tint[i];
        const float shift = keepLuminance ? gray - Luminance(after) : 0;
        const auto level = [&](std::size_t i) {
            return Byte(255 * (before[i] + (after[i] + shift - before[i]) * mix));
        };
        return qRgba(level(0), level(1), level(2), qAlpha(pixel));
    });
}

} // namespace marlet::tool
