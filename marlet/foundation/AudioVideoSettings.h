#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct AudioVideoSettings_Impl;

/// The sample rate in hertz.
enum class AudioSamplingRate : int {
    Hz8000 = 8000,
    Hz12000 = 12000,
    Hz16000 = 16000,
    Hz24000 = 24000,
    Hz32000 = 32000,
    Hz44100 = 44100,
    Hz48000 = 48000,
    Hz88200 = 88200,
    Hz96000 = 96000,
};

enum class VideoFrameRate : int { Fps15, Fps23976, Fps24, Fps25, Fps2997, Fps30, Fps50, Fps5994, Fps60 };

/// A pixel aspect ratio: the width of a pixel by its height.
enum class PAR : int {
    Square,
    Ntsc,         ///< 10/11
    NtscWide,     ///< 40/33
    Pal,          ///< 12/11
    PalWide,      ///< 16/11
    FourThirds,   ///< 4/3, of anamorphic high definition
    ThreeHalves,  ///< 1.5
    Anamorphic2x, ///< 2
    Custom,       ///< a ratio of its own
};

enum class VideoFields : int { Progressive, StandardDefinitionInterlaced, HighDefinitionInterlaced };

/// The format of a composition or sequence: its length in frames, sample rate, frame size in pixels,
/// interlacing, frame rate and pixel aspect ratio. A plain value: nothing is validated on set, and nothing is
/// synchronised.
class MARLET_EXPORT AudioVideoSettings
{
public:
    /// A frame format. 0 and any value that is not listed change nothing.
    enum class Preset : int {
        None,
        Pal,
        PalWide,
        Ntsc,
        NtscWide,
        Hd720At23976,
        Hd720At25,
        Hd720At2997,
        Hdv1080At25,
        Hdv1080At2997,
        DvcproHd720At23976,
        DvcproHd720At25,
        DvcproHd720At2997,
        DvcproHd1080At25,
        DvcproHd1080At2997,
    };

    AudioVideoSettings(Preset preset, int frameCount);
    /// Reads a stand-alone text.
    /// @throws XmlParseException, InvalidProjectVersionException
    explicit AudioVideoSettings(const WideString &xml);
    AudioVideoSettings(const AudioVideoSettings &other);
    AudioVideoSettings &operator=(AudioVideoSettings other);
    ~AudioVideoSettings();

    void Configure(Preset preset);

    WideString Serialize() const;
    /// @throws XmlParseException, InvalidProjectVersionException; what was read until then stays.
    void Deserialize(const WideString &xml);

    int FrameCount() const;
    /// The length at another rate, truncated towards zero.
    int FrameCount(double rate) const;
    /// The length times a / b, truncated towards zero.
    int FrameCount(double a, double b) const;
    void SetFrameCount(int frameCount);
    int Width() const;
    void SetWidth(int width);
    int Height() const;
    void SetHeight(int height);
    VideoFields Fields() const;
    void SetFields(VideoFields fields);
    AudioSamplingRate AudioSampleRate() const;
    void SetAudioSampleRate(AudioSamplingRate rate);
    double FrameRate() const;
    void SetFrameRate(double rate);
    PAR PixelAspectRatio() const;
    void SetPixelAspectRatio(PAR par);
    /// Counts once the pixel aspect ratio is PAR::Custom, which this does not set.
    void SetCustomPixelAspectRatio(double ratio);
    /// The ratio as a number, the custom one included.
    double PixelAspectRatioValue() const;
    int FramesPerSecond() const;

    bool operator==(const AudioVideoSettings &other) const;

    /// The rate that time codes count at: 24, 30 and 60 for the near-integer rates, else the nearest integer.
    static int IntegerFrameRate(double rate);
    /// Milliseconds per frame.
    static double MsPerFrame(double rate);
    /// 0 for a value outside the enumeration.
    static double FrameRateFromEnum(VideoFrameRate rate);
    /// 0 for PAR::Custom and for a value outside the enumeration.
    static double PARValue(PAR par);
    static PAR PARFromValue(double value);
    static int AudioSampleRateValue(AudioSamplingRate rate);
    /// 48000 Hz for any rate that is not listed.
    static AudioSamplingRate AudioSampleRateFromValue(int rate);

private:
    friend class CompositionAsset;
    friend class EditorSequence;

    explicit AudioVideoSettings(const XmlCursor &element);
    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<AudioVideoSettings_Impl> impl_;
};

} // namespace marlet::project
