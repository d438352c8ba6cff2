#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Exceptions.h>

#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <tuple>
#include <utility>

namespace
{

using namespace marlet::project;
using Preset = AudioVideoSettings::Preset;

AudioVideoSettings Sample()
{
    AudioVideoSettings settings(Preset::Hd720At2997, 123);
    settings.SetAudioSampleRate(AudioSamplingRate::Hz96000);
    settings.SetFields(VideoFields::HighDefinitionInterlaced);
    settings.SetPixelAspectRatio(PAR::Custom);
    settings.SetCustomPixelAspectRatio(1.1);
    return settings;
}

constexpr char16_t kSampleXml[] = u"<AudioVideoSettings Version=\"0\">\n"
                                  u" <FrameCount>123</FrameCount>\n"
                                  u" <AudioSampleRate>96000</AudioSampleRate>\n"
                                  u" <Width>1280</Width>\n"
                                  u" <Height>720</Height>\n"
                                  u" <Fields>2</Fields>\n"
                                  u" <FrameRate>29.969999999999999</FrameRate>\n"
                                  u" <PAR>8</PAR>\n"
                                  u" <PARCustom>1.1000000000000001</PARCustom>\n"
                                  u"</AudioVideoSettings>\n";

/// The sample's text with one part of it replaced.
WideString With(const WideString &part, const WideString &replacement)
{
    WideString xml = kSampleXml;
    return xml.replace(xml.find(part), part.size(), replacement);
}

TEST(AudioVideoSettingsTest, APresetLeavesTheFrameCountAndAnUnknownOneEverything)
{
    // Width, height, fields, pixel aspect ratio and rate of each from the first one on.
    const std::tuple<int, int, int, int, double> formats[] = {
        {720, 576, 1, 3, 25.0},   {720, 576, 1, 4, 25.0},    {720, 480, 1, 1, 29.97},
        {720, 480, 1, 2, 29.97},  {1280, 720, 0, 0, 23.976}, {1280, 720, 0, 0, 25.0},
        {1280, 720, 0, 0, 29.97}, {1440, 1080, 2, 5, 25.0},  {1440, 1080, 2, 5, 29.97},
        {960, 720, 0, 5, 23.976}, {960, 720, 0, 5, 25.0},    {960, 720, 0, 5, 29.97},
        {1440, 1080, 2, 5, 25.0}, {1280, 1080, 2, 6, 29.97}};
    int number = 0;
    for (const auto &format : formats) {
        AudioVideoSettings settings = Sample();
        settings.Configure(static_cast<Preset>(++number));
        EXPECT_EQ(std::tuple(settings.Width(), settings.Height(), static_cast<int>(settings.Fields()),
                             static_cast<int>(settings.PixelAspectRatio()), settings.FrameRate()),
                  format)
            << number;
        EXPECT_EQ(settings.AudioSampleRate(), AudioSamplingRate::Hz48000);
        EXPECT_EQ(settings.FrameCount(), 123);
    }
    for (const int preset : {0, -1, 15, INT_MAX}) {
        AudioVideoSettings same = Sample();
        same.Configure(static_cast<Preset>(preset));
        EXPECT_EQ(same, Sample()) << preset;
    }
}

TEST(AudioVideoSettingsTest, IsWrittenAndReadAsOneElement)
{
    EXPECT_EQ(ToUtf8(Sample().Serialize()), ToUtf8(kSampleXml));
    EXPECT_EQ(AudioVideoSettings(WideString(kSampleXml)), Sample());
    // Order, case of the tag, unknown elements and second elements of a name make no difference.
    EXPECT_EQ(
        AudioVideoSettings(
            u"<?xml version='1.0'?><audiovideosettings Version='0'><PARCustom>1.1</PARCustom>"
            u"<PAR>8</PAR><Other><Width>5</Width></Other><FrameRate> +29.97 </FrameRate>"
            u"<Fields>2</Fields><Height>720</Height><Width>1280</Width><Width>7</Width>"
            u"<AudioSampleRate>96000</AudioSampleRate><FrameCount>123</FrameCount></audiovideosettings>"),
        Sample());
    EXPECT_EQ(AudioVideoSettings(With(u"720", u"many")).Height(), 0);
    EXPECT_EQ(AudioVideoSettings(With(u"Version=\"0\"", u"Version=\"x\"")), Sample());
}

TEST(AudioVideoSettingsTest, RefusesWhatIsNotItsElement)
{
    const std::pair<WideString, const char *> cases[] = {
        {u"", "Wrong tag name\nAudioVideoSettings"},
        {With(u"Version=\"0\"", u""), "AudioVideoSettings is missing attribute Version\n"},
        {With(u"FrameCount>", u"framecount>"), "Wrong tag name\nAudioVideoSettings"},
        {With(u"<PARCustom>1.1000000000000001</PARCustom>", u"<parcustom/>"), "Missing element\nPARCustom"}};
    for (const auto &refused : cases)
        EXPECT_THAT([&] { AudioVideoSettings{refused.first}; },
                    testing::ThrowsMessage<XmlParseException>(refused.second));
    const WideString newer = With(u"Version=\"0\"", u"Version=\"1\"");
    EXPECT_THROW(AudioVideoSettings{newer}, InvalidProjectVersionException);
}

TEST(AudioVideoSettingsTest, WhatWasReadBeforeAFailureStays)
{
    AudioVideoSettings settings(Preset::Pal, 1);
    EXPECT_THROW(settings.Deserialize(With(u"Height>720</Height>", u"Tall/>")), XmlParseException);
    EXPECT_EQ(settings.FrameCount(), 123);
    EXPECT_EQ(settings.Width(), 1280);
    EXPECT_EQ(settings.Height(), 576);
}

TEST(AudioVideoSettingsTest, EveryFieldCountsForEquality)
{
    const std::pair<const char16_t *, const char16_t *> changes[] = {
        {u"123", u"124"},   {u"96000", u"8000"},
        {u"1280", u"1281"}, {u"720", u"721"},
        {u">2<", u">0<"},   {u"29.969999999999999", u"29.970000000000002"},
        {u">8<", u">0<"},   {u"1.1000000000000001", u"1.10000000001"}};
    for (const auto &[part, other] : changes)
        EXPECT_NE(AudioVideoSettings(With(part, other)), Sample()) << ToUtf8(other);
    EXPECT_EQ(AudioVideoSettings(With(u"1.1000000000000001", u"1.1000000000001")), Sample());
}

TEST(AudioVideoSettingsTest, FrameCountsAreConvertedTowardsZero)
{
    AudioVideoSettings settings(Preset::None, -100);
    EXPECT_EQ(settings.FrameCount(29.97), -99);
    EXPECT_EQ(settings.FrameCount(25.0, 50.0), -50);
    EXPECT_EQ(settings.FrameCount(1.0, 0.0), INT_MIN);
    EXPECT_EQ(settings.FrameCount(0.0, 0.0), 0);
}

TEST(AudioVideoSettingsTest, RatesAndRatiosThatAreNotListedConvertToo)
{
    const std::pair<double, int> integerRates[] = {
        {23.976, 24}, {29.5, 30}, {-0.5, -1}, {-0.4, 0}, {1e300, INT_MAX}};
    for (const auto &[rate, integer] : integerRates)
        EXPECT_EQ(AudioVideoSettings::IntegerFrameRate(rate), integer) << rate;
    const double rates[] = {15, 23.976, 24, 25, 29.97, 30, 50, 59.94, 60, 0};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(AudioVideoSettings::FrameRateFromEnum(static_cast<VideoFrameRate>(i)), rates[i]) << i;
    const double ratios[] = {1, 10 / 11.0, 40 / 33.0, 12 / 11.0, 16 / 11.0, 4 / 3.0, 1.5, 2, 0};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(AudioVideoSettings::PARValue(static_cast<PAR>(i)), ratios[i]) << i;
        EXPECT_EQ(AudioVideoSettings::PARFromValue(ratios[i]), static_cast<PAR>(i));
    }
    EXPECT_EQ(AudioVideoSettings::PARValue(static_cast<PAR>(-1)), 0);
    EXPECT_EQ(AudioVideoSettings::PARFromValue(1.0909090909), PAR::Custom);
    EXPECT_EQ(AudioVideoSettings::PARFromValue(NAN), PAR::Custom);
    EXPECT_EQ(Sample().PixelAspectRatioValue(), 1.1);
    for (const int rate : {8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000})
        EXPECT_EQ(
            AudioVideoSettings::AudioSampleRateValue(AudioVideoSettings::AudioSampleRateFromValue(rate)),
            rate);
    EXPECT_EQ(AudioVideoSettings::AudioSampleRateFromValue(11025), AudioSamplingRate::Hz48000);
}

} // namespace
