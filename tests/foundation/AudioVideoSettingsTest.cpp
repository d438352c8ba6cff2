#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/Exceptions.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

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

TEST(AudioVideoSettingsTest, PresetsGiveTheirFormats)
{
    struct Case {
        int preset, width, height, fields;
        double rate;
        int par;
    };
    const Case cases[] = {
        {1, 720, 576, 1, 25.0, 3},    {2, 720, 576, 1, 25.0, 4},     {3, 720, 480, 1, 29.97, 1},
        {4, 720, 480, 1, 29.97, 2},   {5, 1280, 720, 0, 23.976, 0},  {6, 1280, 720, 0, 25.0, 0},
        {7, 1280, 720, 0, 29.97, 0},  {8, 1440, 1080, 2, 25.0, 5},   {9, 1440, 1080, 2, 29.97, 5},
        {10, 960, 720, 0, 23.976, 5}, {11, 960, 720, 0, 25.0, 5},    {12, 960, 720, 0, 29.97, 5},
        {13, 1440, 1080, 2, 25.0, 5}, {14, 1280, 1080, 2, 29.97, 6},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.preset);
        AudioVideoSettings settings(Preset::None, 77);
        settings.SetAudioSampleRate(AudioSamplingRate::Hz8000);
        settings.Configure(static_cast<Preset>(c.preset));
        EXPECT_EQ(settings.Width(), c.width);
        EXPECT_EQ(settings.Height(), c.height);
        EXPECT_EQ(static_cast<int>(settings.Fields()), c.fields);
        EXPECT_EQ(settings.FrameRate(), c.rate);
        EXPECT_EQ(static_cast<int>(settings.PixelAspectRatio()), c.par);
        EXPECT_EQ(settings.AudioSampleRate(), AudioSamplingRate::Hz48000);
        EXPECT_EQ(settings.FrameCount(), 77);
    }
}

TEST(AudioVideoSettingsTest, OtherPresetsChangeNothing)
{
    for (const int preset : {0, -1, 15, INT_MIN, INT_MAX}) {
        AudioVideoSettings settings = Sample();
        settings.Configure(static_cast<Preset>(preset));
        EXPECT_EQ(settings, Sample()) << preset;
    }
}

TEST(AudioVideoSettingsTest, StartsWithoutAFormat)
{
    const AudioVideoSettings settings(Preset::None, 5);
    EXPECT_EQ(settings.FrameCount(), 5);
    EXPECT_EQ(settings.AudioSampleRate(), AudioSamplingRate::Hz48000);
    EXPECT_EQ(settings.Width(), 0);
    EXPECT_EQ(settings.Height(), 0);
    EXPECT_EQ(settings.Fields(), VideoFields::Progressive);
    EXPECT_EQ(settings.FrameRate(), 30.0);
    EXPECT_EQ(settings.PixelAspectRatioValue(), 1.0);
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
}

TEST(AudioVideoSettingsTest, MalformedNumbersAreZero)
{
    EXPECT_EQ(AudioVideoSettings(With(u"720", u"many")).Height(), 0);
    EXPECT_EQ(AudioVideoSettings(With(u"29.969999999999999", u"")).FrameRate(), 0);
    EXPECT_EQ(AudioVideoSettings(With(u"Version=\"0\"", u"Version=\"x\"")), Sample());
}

TEST(AudioVideoSettingsTest, RefusesWhatIsNotItsElement)
{
    struct Case {
        WideString xml;
        const char *words;
    };
    const Case cases[] = {
        {u"", "Wrong tag name\nAudioVideoSettings"},
        {u"no text of this kind", "Wrong tag name\nAudioVideoSettings"},
        {u"<Settings Version=\"0\"/>", "Wrong tag name\nAudioVideoSettings"},
        {With(u"Version=\"0\"", u""), "AudioVideoSettings is missing attribute Version\n"},
        {With(u"FrameCount>", u"framecount>"), "Wrong tag name\nAudioVideoSettings"},
        {With(u"<FrameCount>123</FrameCount>", u""), "Missing element\nFrameCount"},
        {With(u"<PARCustom>1.1000000000000001</PARCustom>", u"<parcustom/>"), "Missing element\nPARCustom"},
    };
    for (const Case &c : cases) {
        try {
            const AudioVideoSettings settings(c.xml);
            ADD_FAILURE() << ToUtf8(c.xml);
        } catch (const XmlParseException &error) {
            EXPECT_STREQ(error.what(), c.words);
        }
    }
    try {
        const AudioVideoSettings settings(With(u"Version=\"0\"", u"Version=\"1\""));
        ADD_FAILURE();
    } catch (const InvalidProjectVersionException &error) {
        EXPECT_STREQ(error.what(),
                     "The project file was saved by a newer version of the application than this one.");
    }
}

TEST(AudioVideoSettingsTest, WhatWasReadBeforeAFailureStays)
{
    AudioVideoSettings settings(Preset::Pal, 1);
    EXPECT_THROW(settings.Deserialize(With(u"Height>720</Height>", u"Tall/>")), XmlParseException);
    EXPECT_EQ(settings.FrameCount(), 123);
    EXPECT_EQ(settings.Width(), 1280);
    EXPECT_EQ(settings.Height(), 576);
}

TEST(AudioVideoSettingsTest, CopiesStandAlone)
{
    AudioVideoSettings original = Sample();
    const AudioVideoSettings copy = original;
    AudioVideoSettings assigned(Preset::None, 0);
    assigned = original;
    original.SetWidth(1);
    EXPECT_EQ(copy, Sample());
    EXPECT_EQ(assigned, Sample());
    EXPECT_NE(original, copy);
}

TEST(AudioVideoSettingsTest, EveryFieldCountsForEquality)
{
    const std::function<void(AudioVideoSettings &)> changes[] = {
        [](AudioVideoSettings &s) { s.SetFrameCount(124); },
        [](AudioVideoSettings &s) { s.SetAudioSampleRate(AudioSamplingRate::Hz8000); },
        [](AudioVideoSettings &s) { s.SetWidth(1281); },
        [](AudioVideoSettings &s) { s.SetHeight(721); },
        [](AudioVideoSettings &s) { s.SetFields(VideoFields::Progressive); },
        [](AudioVideoSettings &s) { s.SetFrameRate(std::nextafter(29.97, 30)); },
        [](AudioVideoSettings &s) { s.SetPixelAspectRatio(PAR::Square); },
        [](AudioVideoSettings &s) { s.SetCustomPixelAspectRatio(1.1 + 1e-11); },
    };
    for (const auto &change : changes) {
        AudioVideoSettings changed = Sample();
        change(changed);
        EXPECT_NE(changed, Sample()) << (&change - changes);
    }
    AudioVideoSettings near = Sample();
    near.SetCustomPixelAspectRatio(1.1 + 1e-13);
    EXPECT_EQ(near, Sample());
}

TEST(AudioVideoSettingsTest, FrameCountsAreConvertedTowardsZero)
{
    AudioVideoSettings settings(Preset::None, 100);
    EXPECT_EQ(settings.FrameCount(60.0), 200);
    EXPECT_EQ(settings.FrameCount(29.97), 99);
    EXPECT_EQ(settings.FrameCount(25.0, 50.0), 50);
    EXPECT_EQ(settings.FrameCount(1.0, 0.0), INT_MAX);
    EXPECT_EQ(settings.FrameCount(-1.0, 0.0), INT_MIN);
    EXPECT_EQ(settings.FrameCount(0.0, 0.0), 0);
    settings.SetFrameCount(-100);
    EXPECT_EQ(settings.FrameCount(29.97), -99);
}

TEST(AudioVideoSettingsTest, RatesAndRatiosConvert)
{
    const std::pair<double, int> integerRates[] = {{23.976, 24}, {29.97, 30}, {59.94, 60},
                                                   {25.0, 25},   {29.5, 30},  {0.0, 0},
                                                   {-0.5, -1},   {-0.4, 0},   {1e300, INT_MAX}};
    for (const auto &[rate, integer] : integerRates)
        EXPECT_EQ(AudioVideoSettings::IntegerFrameRate(rate), integer) << rate;
    EXPECT_EQ(AudioVideoSettings::MsPerFrame(25.0), 40.0);

    const double rates[] = {15.0, 23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(AudioVideoSettings::FrameRateFromEnum(static_cast<VideoFrameRate>(i)), rates[i]);
    EXPECT_EQ(AudioVideoSettings::FrameRateFromEnum(static_cast<VideoFrameRate>(9)), 0);

    const double ratios[] = {1.0, 10.0 / 11, 40.0 / 33, 12.0 / 11, 16.0 / 11, 4.0 / 3, 1.5, 2.0, 0.0};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(AudioVideoSettings::PARValue(static_cast<PAR>(i)), ratios[i]);
        EXPECT_EQ(AudioVideoSettings::PARFromValue(ratios[i]), static_cast<PAR>(i));
    }
    EXPECT_EQ(AudioVideoSettings::PARValue(static_cast<PAR>(-1)), 0);
    EXPECT_EQ(AudioVideoSettings::PARFromValue(1.0909090909), PAR::Custom);
    EXPECT_EQ(AudioVideoSettings::PARFromValue(NAN), PAR::Custom);
    EXPECT_EQ(Sample().PixelAspectRatioValue(), 1.1);
    EXPECT_EQ(Sample().FramesPerSecond(), 30);
}

TEST(AudioVideoSettingsTest, SampleRatesThatAreNotListedBecome48000)
{
    for (const int rate : {8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000})
        EXPECT_EQ(
            AudioVideoSettings::AudioSampleRateValue(AudioVideoSettings::AudioSampleRateFromValue(rate)),
            rate);
    for (const int rate : {11025, 0, -1, 192000})
        EXPECT_EQ(AudioVideoSettings::AudioSampleRateFromValue(rate), AudioSamplingRate::Hz48000);
}

} // namespace
