#include <marlet/exchange/mlt/MltAnimation.h>

#include <charconv>
#include <cmath>

namespace marlet::project
{

namespace
{

template <std::size_t N> NarrowString AnimationText(const FrameSamples<N> &samples, double tolerance)
{
    constexpr double kDigits = 1e4;
    const std::vector<std::size_t> kept = SamplesOfStraightLines(samples, tolerance);
    NarrowString text;
    for (const std::size_t frame : kept) {
        if (kept.size() > 1)
            text += (text.empty() ? "" : ";") + std::to_string(frame) + "=";
        for (std::size_t i = 0; i < N; ++i)
            text += (i > 0 ? " " : "") + MltNumber(std::round(samples[frame][i] * kDigits) / kDigits);
    }
    return text;
}

} // namespace

NarrowString MltNumber(double number)
{
    char digits[64];
    // No minus before a zero.
    return {digits, std::to_chars(digits, std::end(digits), number + 0.0).ptr};
}

NarrowString MltAnimationText(const FrameSamples<1> &samples, double tolerance)
{
    return AnimationText(samples, tolerance);
}

NarrowString MltAnimationText(const FrameSamples<4> &samples, double tolerance)
{
    return AnimationText(samples, tolerance);
}

} // namespace marlet::project
