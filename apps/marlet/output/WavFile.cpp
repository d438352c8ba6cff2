#include "WavFile.h"

#include <string_view>
#include <utility>

namespace marlet::tool
{

namespace
{

void AppendLittleEndian(std::string &bytes, std::uint64_t number, int byteCount)
{
    for (int i = 0; i < byteCount; ++i)
        bytes += static_cast<char>(number >> 8 * i & 0xFF);
}

void AppendChunk(std::string &file, std::string_view type, std::string_view content)
{
    file.append(type);
    AppendLittleEndian(file, content.size(), 4);
    file.append(content);
    if (content.size() % 2 != 0)
        file += '\0';
}

/// More than two channels or 16 bits ask for the extensible form, which names the coding by an ID.
std::string FormatOf(const Sound &sound)
{
    constexpr int kPcm = 1;
    constexpr int kExtensible = 0xFFFE;
    constexpr int kExtensionBytes = 22;
    constexpr std::string_view kPcmID("\x01\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 16);

    const bool isExtensible = sound.channels > 2 || sound.bitsPerSample > 16;
    const std::uint64_t bytesPerMoment = std::uint64_t{sound.channels} * (sound.bitsPerSample / 8u);
    std::string format;
    AppendLittleEndian(format, isExtensible ? kExtensible : kPcm, 2);
    AppendLittleEndian(format, sound.channels, 2);
    AppendLittleEndian(format, sound.sampleRate, 4);
    AppendLittleEndian(format, sound.sampleRate * bytesPerMoment, 4);
    AppendLittleEndian(format, bytesPerMoment, 2);
    AppendLittleEndian(format, sound.bitsPerSample, 2);
    if (isExtensible) {
        AppendLittleEndian(format, kExtensionBytes, 2);
        AppendLittleEndian(format, sound.bitsPerSample, 2);
        AppendLittleEndian(format, 0, 4); // no place in the room for any channel
        format += kPcmID;
    }
    return format;
}

/// The bytes of each sample, lowest first.
std::string SamplesOf(const Sound &sound)
{
    const std::size_t bytes = sound.bitsPerSample / 8u;
    std::string samples(reinterpret_cast<const char *>(sound.samples), sound.byteCount);
    const std::uint16_t probe = 1;
    if (*reinterpret_cast<const unsigned char *>(&probe) == 1)
        return samples;
    for (std::size_t at = 0; at + bytes <= samples.size(); at += bytes)
        for (std::size_t i = 0; i < bytes / 2; ++i)
            std::swap(samples[at + i], samples[at + bytes - 1 - i]);
    return samples;
}

} // namespace

std::string EncodeWav(const Sound &sound)
{
    std::string chunks = "WAVE";
    AppendChunk(chunks, "fmt ", FormatOf(sound));
    AppendChunk(chunks, "data", SamplesOf(sound));
    std::string file;
    AppendChunk(file, "RIFF", chunks);
    return file;
}

} // namespace marlet::tool
