#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace marlet::tool
{

/// Sound as MediaAudioStream hands it out: interleaved signed integers in the machine's byte order.
struct Sound {
    const unsigned char *samples;
    std::size_t byteCount;
    std::uint32_t sampleRate;
    std::uint16_t channels;
    std::uint16_t bitsPerSample;
};

/// How many bytes of samples fit into a WAV file.
inline constexpr std::size_t kMostWavBytes = 0x7FFFFFFF;

/// The content of a WAV file with the sound in it.
std::string EncodeWav(const Sound &sound);

} // namespace marlet::tool
