#include <marlet/exchange/mlt/MltXml.h>

#include <marlet/foundation/AudioVideoSettings.h>

#include <cmath>
#include <numeric>

namespace marlet::project
{

namespace
{

struct Ratio {
    long long above = 1;
    long long below = 1;
};

Ratio Reduced(long long above, long long below)
{
    const long long common = std::gcd(above, below);
    return common > 0 ? Ratio{above / common, below / common} : Ratio{};
}

/// 29.97 stands for 30000/1001.
Ratio RateOf(double frameRate)
{
    const double whole = std::round(frameRate * 1.001);
    if (std::abs(whole / 1.001 - frameRate) < 0.005 && std::abs(std::round(frameRate) - frameRate) > 1e-6)
        return {static_cast<long long>(whole) * 1000, 1001};
    return Reduced(std::llround(frameRate * 1000), 1000);
}

Ratio PixelsOf(const AudioVideoSettings &settings)
{
    switch (settings.PixelAspectRatio()) {
    case PAR::Square:
        return {1, 1};
    case PAR::Ntsc:
        return {10, 11};
    case PAR::NtscWide:
        return {40, 33};
    case PAR::Pal:
        return {12, 11};
    case PAR::PalWide:
        return {16, 11};
    case PAR::FourThirds:
        return {4, 3};
    default:
        return Reduced(std::llround(settings.PixelAspectRatioValue() * 10000), 10000);
    }
}

} // namespace

void MltProperty(XmlWriter &writer, std::string_view name, std::string_view value)
{
    const XmlElement element(writer, "property");
    writer.Attribute("name", name);
    writer.Text(value);
}

void MltTransition(XmlWriter &writer, std::string_view service, int lower, int upper, int frames,
                   std::initializer_list<std::pair<std::string_view, std::string_view>> properties)
{
    const XmlElement element(writer, "transition");
    if (frames > 0) {
        writer.Attribute("in", 0);
        writer.Attribute("out", frames - 1);
    }
    MltProperty(writer, "mlt_service", service);
    MltProperty(writer, "a_track", std::to_string(lower));
    MltProperty(writer, "b_track", std::to_string(upper));
    if (frames == 0)
        MltProperty(writer, "always_active", "1");
    for (const auto &[name, value] : properties)
        MltProperty(writer, name, value);
}

void MltProfile(XmlWriter &writer, const AudioVideoSettings &settings)
{
    constexpr int kHighDefinition = 720;
    const Ratio pixels = PixelsOf(settings);
    const Ratio picture = Reduced(settings.Width() * pixels.above, settings.Height() * pixels.below);
    const Ratio rate = RateOf(settings.FrameRate());
    const XmlElement element(writer, "profile");
    writer.Attribute("description", "of the sequence");
    writer.Attribute("width", settings.Width());
    writer.Attribute("height", settings.Height());
    writer.Attribute("progressive", settings.Fields() == VideoFields::Progressive);
    writer.Attribute("sample_aspect_num", std::int64_t{pixels.above});
    writer.Attribute("sample_aspect_den", std::int64_t{pixels.below});
    writer.Attribute("display_aspect_num", std::int64_t{picture.above});
    writer.Attribute("display_aspect_den", std::int64_t{picture.below});
    writer.Attribute("frame_rate_num", std::int64_t{rate.above});
    writer.Attribute("frame_rate_den", std::int64_t{rate.below});
    writer.Attribute("colorspace", settings.Height() >= kHighDefinition ? 709 : 601);
}

} // namespace marlet::project
