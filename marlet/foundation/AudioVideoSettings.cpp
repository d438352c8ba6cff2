#include <marlet/foundation/AudioVideoSettings.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/Tolerance.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <array>

namespace marlet::project
{

struct AudioVideoSettings_Impl {
    int frameCount = 0;
    AudioSamplingRate audioSampleRate = AudioSamplingRate::Hz48000;
    int width = 0;
    int height = 0;
    VideoFields fields = VideoFields::Progressive;
    double frameRate = 30.0;
    PAR pixelAspectRatio = PAR::Square;
    double customPixelAspectRatio = 0.0;
};

namespace
{

constexpr char kTag[] = "AudioVideoSettings";
constexpr unsigned int kVersion = 0;

struct Format {
    int width;
    int height;
    VideoFields fields;
    double frameRate;
    PAR pixelAspectRatio;
};

constexpr VideoFields kProgressive = VideoFields::Progressive;
constexpr VideoFields kSdInterlaced = VideoFields::StandardDefinitionInterlaced;
constexpr VideoFields kHdInterlaced = VideoFields::HighDefinitionInterlaced;

/// The formats of the presets from the first one on.
constexpr std::array<Format, 14> kPresets = {{
    {720, 576, kSdInterlaced, 25.0, PAR::Pal},
    {720, 576, kSdInterlaced, 25.0, PAR::PalWide},
    {720, 480, kSdInterlaced, 29.97, PAR::Ntsc},
    {720, 480, kSdInterlaced, 29.97, PAR::NtscWide},
    {1280, 720, kProgressive, 23.976, PAR::Square},
    {1280, 720, kProgressive, 25.0, PAR::Square},
    {1280, 720, kProgressive, 29.97, PAR::Square},
    {1440, 1080, kHdInterlaced, 25.0, PAR::FourThirds},
    {1440, 1080, kHdInterlaced, 29.97, PAR::FourThirds},
    {960, 720, kProgressive, 23.976, PAR::FourThirds},
    {960, 720, kProgressive, 25.0, PAR::FourThirds},
    {960, 720, kProgressive, 29.97, PAR::FourThirds},
    {1440, 1080, kHdInterlaced, 25.0, PAR::FourThirds},
    {1280, 1080, kHdInterlaced, 29.97, PAR::ThreeHalves},
}};

constexpr std::array<double, 9> kFrameRates = {15.0, 23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0};

constexpr std::array<double, 8> kPixelAspectRatios = {1.0,         10.0 / 11.0, 40.0 / 33.0, 12.0 / 11.0,
                                                      16.0 / 11.0, 4.0 / 3.0,   1.5,         2.0};

constexpr std::array<int, 9> kSampleRates = {8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000};

template <std::size_t N> double EntryOrZero(const std::array<double, N> &table, int index)
{
    return index >= 0 && index < static_cast<int>(N) ? table[static_cast<std::size_t>(index)] : 0.0;
}

bool SameRatio(double a, double b)
{
    return kytl::NearlyEqual(a, b, kytl::kRatioTolerance);
}

template <class Xml, class Self> void SettingsFields(Xml &xml, Self &self)
{
    xml.Child("FrameCount", self.frameCount);
    xml.Child("AudioSampleRate", self.audioSampleRate);
    xml.Child("Width", self.width);
    xml.Child("Height", self.height);
    xml.Child("Fields", self.fields);
    xml.Child("FrameRate", self.frameRate);
    xml.Child("PAR", self.pixelAspectRatio);
    xml.Child("PARCustom", self.customPixelAspectRatio);
}

} // namespace

AudioVideoSettings::AudioVideoSettings(Preset preset, int frameCount)
{
    impl_->frameCount = frameCount;
    Configure(preset);
}

AudioVideoSettings::AudioVideoSettings(const WideString &xml) : AudioVideoSettings(Preset::None, 0)
{
    Deserialize(xml);
}

AudioVideoSettings::AudioVideoSettings(const XmlCursor &element) : AudioVideoSettings(Preset::None, 0)
{
    Deserialize(element);
}

AudioVideoSettings::AudioVideoSettings(const AudioVideoSettings &other) = default;

AudioVideoSettings &AudioVideoSettings::operator=(AudioVideoSettings other)
{
    impl_.Swap(other.impl_);
    return *this;
}

AudioVideoSettings::~AudioVideoSettings() = default;

void AudioVideoSettings::Configure(Preset preset)
{
    const auto number = static_cast<std::size_t>(preset);
    if (number < 1 || number > kPresets.size())
        return;
    const Format &format = kPresets[number - 1];
    impl_->audioSampleRate = AudioSamplingRate::Hz48000;
    impl_->width = format.width;
    impl_->height = format.height;
    impl_->fields = format.fields;
    impl_->frameRate = format.frameRate;
    impl_->pixelAspectRatio = format.pixelAspectRatio;
}

WideString AudioVideoSettings::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void AudioVideoSettings::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion);
    SettingsFields(writer, *impl_);
}

void AudioVideoSettings::Deserialize(const WideString &xml)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

void AudioVideoSettings::Deserialize(const XmlCursor &element)
{
    element.RequireHeader(kTag, kVersion);
    SettingsFields(element, *impl_);
}

int AudioVideoSettings::FrameCount() const
{
    return impl_->frameCount;
}

int AudioVideoSettings::FrameCount(double rate) const
{
    return FrameCount(rate, impl_->frameRate);
}

int AudioVideoSettings::FrameCount(double a, double b) const
{
    return Truncate<int>(impl_->frameCount * (a / b));
}

void AudioVideoSettings::SetFrameCount(int frameCount)
{
    impl_->frameCount = frameCount;
}

int AudioVideoSettings::Width() const
{
    return impl_->width;
}

void AudioVideoSettings::SetWidth(int width)
{
    impl_->width = width;
}

int AudioVideoSettings::Height() const
{
    return impl_->height;
}

void AudioVideoSettings::SetHeight(int height)
{
    impl_->height = height;
}

VideoFields AudioVideoSettings::Fields() const
{
    return impl_->fields;
}

void AudioVideoSettings::SetFields(VideoFields fields)
{
    impl_->fields = fields;
}

AudioSamplingRate AudioVideoSettings::AudioSampleRate() const
{
    return impl_->audioSampleRate;
}

void AudioVideoSettings::SetAudioSampleRate(AudioSamplingRate rate)
{
    impl_->audioSampleRate = rate;
}

double AudioVideoSettings::FrameRate() const
{
    return impl_->frameRate;
}

void AudioVideoSettings::SetFrameRate(double rate)
{
    impl_->frameRate = rate;
}

PAR AudioVideoSettings::PixelAspectRatio() const
{
    return impl_->pixelAspectRatio;
}

void AudioVideoSettings::SetPixelAspectRatio(PAR par)
{
    impl_->pixelAspectRatio = par;
}

void AudioVideoSettings::SetCustomPixelAspectRatio(double ratio)
{
    impl_->customPixelAspectRatio = ratio;
}

double AudioVideoSettings::PixelAspectRatioValue() const
{
    return impl_->pixelAspectRatio == PAR::Custom ? impl_->customPixelAspectRatio
                                                  : PARValue(impl_->pixelAspectRatio);
}

int AudioVideoSettings::FramesPerSecond() const
{
    return IntegerFrameRate(impl_->frameRate);
}

bool AudioVideoSettings::operator==(const AudioVideoSettings &other) const
{
    const AudioVideoSettings_Impl &a = *impl_;
    const AudioVideoSettings_Impl &b = *other.impl_;
    return a.frameCount == b.frameCount && a.audioSampleRate == b.audioSampleRate && a.width == b.width &&
           a.height == b.height && a.fields == b.fields && a.pixelAspectRatio == b.pixelAspectRatio &&
           a.frameRate == b.frameRate && SameRatio(a.customPixelAspectRatio, b.customPixelAspectRatio);
}

int AudioVideoSettings::IntegerFrameRate(double rate)
{
    // The near-integer rates lie nearest to these integers too, so that rounding covers them.
    return Truncate<int>(RoundHalfAway(rate));
}

double AudioVideoSettings::MsPerFrame(double rate)
{
    return 1000.0 / rate;
}

double AudioVideoSettings::FrameRateFromEnum(VideoFrameRate rate)
{
    return EntryOrZero(kFrameRates, static_cast<int>(rate));
}

double AudioVideoSettings::PARValue(PAR par)
{
    return EntryOrZero(kPixelAspectRatios, static_cast<int>(par));
}

PAR AudioVideoSettings::PARFromValue(double value)
{
    std::size_t index = 0;
    while (index < kPixelAspectRatios.size() && !SameRatio(value, kPixelAspectRatios[index]))
        ++index;
    return static_cast<PAR>(index);
}

int AudioVideoSettings::AudioSampleRateValue(AudioSamplingRate rate)
{
    return static_cast<int>(rate);
}

AudioSamplingRate AudioVideoSettings::AudioSampleRateFromValue(int rate)
{
    for (const int listed : kSampleRates)
        if (rate == listed)
            return static_cast<AudioSamplingRate>(rate);
    return AudioSamplingRate::Hz48000;
}

} // namespace marlet::project
