#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace marlet::tool
{

struct Fraction {
    int numerator;
    int denominator;
};

enum class FieldOrder { WholeFrames, BottomFirst, TopFirst };

struct EncoderOptions {
    int width = 0;  ///< pixels
    int height = 0; ///< pixels
    Fraction frameRate = {30, 1};
    long long bitRate = 0; ///< bits per second; 0 for a constant quality
    int quantiser = 2;     ///< 1 for the best quality to 31, where there is no bit rate
    int groupSize = 12;    ///< the most frames from one key frame to the next
    int bFrames = 0;       ///< frames in a row that are predicted from both sides
    FieldOrder fieldOrder = FieldOrder::WholeFrames;
    Fraction pixelAspect = {1, 1};
    int sampleRate = 0; ///< hertz; 0 for no sound
    int channels = 2;
};

/// Writes a clip in MPEG-4 with PCM sound of 16 bits. The ending of the file's name decides about the
/// container: .mov, .avi and .mkv, or .mp4 without sound. The file comes into being as a whole in Finish, and
/// nothing is left behind without it.
///
/// Not for several threads at once. What cannot be written throws a Failure with the file as its subject.
class Encoder
{
public:
    static constexpr int kLongestSide = 8191; ///< of what the codec can tell of, in 13 bits

    /// @throws Failure
    Encoder(const std::string &path, const EncoderOptions &options);
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;
    ~Encoder();

    /// The next frame: rows of B, G, R, A; alpha is left out. @throws Failure
    void AddFrame(const unsigned char *bgra, int rowBytes);
    /// The next samples, interleaved: `count` of each channel. @throws Failure
    void AddSamples(const std::int16_t *samples, int count);
    /// Puts the file in place, over an older one. Nothing can be added afterwards. @throws Failure
    void Finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace marlet::tool
