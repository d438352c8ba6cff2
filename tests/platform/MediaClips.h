#pragma once

#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/platform/media/MediaResources.h>

#include <encode/Encoder.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

namespace clips
{

using namespace kyh::media;
using marlet::tool::EncoderOptions;
using Bytes = std::vector<unsigned char>;

/// A folder that goes with the test.
class Folder
{
public:
    Folder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "marlet-media-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    std::string Path(const std::string &name) const { return path_ + "/" + name; }
    std::string Write(const std::string &name, const std::string &bytes) const
    {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }
    std::string Read(const std::string &name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string path_;
};

/// An open file, with the streams that it has.
struct Media {
    KyAbstractMediaFile *file = nullptr;
    int code;
    std::shared_ptr<KyAbstractVideoStream> video;
    std::shared_ptr<KyAbstractAudioStream> audio;

    explicit Media(const std::string &path, std::optional<double> sequenceRate = std::nullopt,
                   const MediaResourcesPtr &resources = CommonResources())
    {
        const auto wide = std::filesystem::path(path).u16string();
        code = sequenceRate ? CreateImageSequence(wide.c_str(), *sequenceRate, resources, &file)
                            : CreateMediaFile(wide.c_str(), resources, &file);
        if (code == kSuccess)
            TakeStreams();
    }
    Media(const Media &) = delete;
    Media &operator=(const Media &) = delete;
    ~Media() { KyMediaFileRelease(file); }

    /// Those that the file has by now.
    void TakeStreams()
    {
        video = std::static_pointer_cast<KyAbstractVideoStream>(file->Stream(kVideoStream));
        audio = std::static_pointer_cast<KyAbstractAudioStream>(file->Stream(kAudioStream));
    }

    /// The frame in B, G, R, A, or nothing if it is not handed out.
    Bytes Frame(int number) const
    {
        Bytes bytes(static_cast<std::size_t>(video->FrameBufferSize(KyImageChannels::Four)));
        const int size = static_cast<int>(bytes.size());
        if (video->GetFrame(number, KyImageChannels::Four, bytes.data(), size, nullptr, 0) != kSuccess)
            bytes.clear();
        return bytes;
    }

    template <class Sample> std::vector<Sample> Samples(long long start, int count) const
    {
        std::vector<Sample> samples(static_cast<std::size_t>(count) * audio->ChannelCount(), Sample{77});
        const int size = static_cast<int>(samples.size() * sizeof(Sample));
        EXPECT_EQ(
            audio->GetSamples(start, count, reinterpret_cast<unsigned char *>(samples.data()), size, nullptr),
            kSuccess);
        return samples;
    }
};

/// Bytes that this process has read from files.
inline std::size_t BytesRead()
{
    std::ifstream counts("/proc/self/io");
    std::string name;
    std::size_t bytes = 0;
    counts >> name >> bytes;
    return name == "rchar:" ? bytes : 0;
}

template <class Operation> std::size_t BytesReadBy(Operation &&operation)
{
    const std::size_t before = BytesRead();
    operation();
    // Asking reads a little as well.
    constexpr std::size_t kByAsking = 1000;
    const std::size_t bytes = BytesRead() - before;
    return bytes - std::min(bytes, kByAsking);
}

constexpr int kBlock = 8;
constexpr int kBits = 8;

/// A frame that carries its number in blocks of black and white in its upper row, above a moving texture.
inline Bytes NumberedFrame(int width, int height, int number)
{
    Bytes frame;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool isBlock = y < kBlock && x < kBits * kBlock;
            const int shade = isBlock ? 255 * (number >> x / kBlock & 1) : (x * 5 + y * 3 + number * 7) % 200;
            frame.insert(frame.end(), 3, static_cast<unsigned char>(shade));
            frame.push_back(255);
        }
    return frame;
}

/// The number in a frame, or -1 if it cannot be read.
inline int NumberIn(const Bytes &frame, int width)
{
    int number = 0;
    for (int bit = 0; bit < kBits; ++bit) {
        const std::size_t middle = static_cast<std::size_t>(kBlock / 2 * width + bit * kBlock + kBlock / 2);
        const int shade = frame.empty() ? 128 : frame[middle * 4];
        if (shade > 60 && shade < 195)
            return -1;
        number |= (shade > 128) << bit;
    }
    return number;
}

/// A sine of which every channel has a pitch of its own.
inline std::int16_t Sine(long long sample, int channel)
{
    return static_cast<std::int16_t>(std::lround(
        20000 * std::sin(2 * std::numbers::pi * static_cast<double>(sample) * (channel + 1) / 97)));
}

inline EncoderOptions SmallClip()
{
    EncoderOptions options;
    options.width = 80;
    options.height = 48;
    return options;
}

inline std::string MakeClip(const std::string &path, const EncoderOptions &options, int frames,
                            int samples = 0)
{
    marlet::tool::Encoder encoder(path, options);
    for (int i = 0; i < frames; ++i)
        encoder.AddFrame(NumberedFrame(options.width, options.height, i).data(), options.width * 4);
    std::vector<std::int16_t> sound;
    for (int i = 0; i < samples; ++i)
        for (int channel = 0; channel < options.channels; ++channel)
            sound.push_back(Sine(i, channel));
    if (samples > 0)
        encoder.AddSamples(sound.data(), samples);
    encoder.Finish();
    return path;
}

} // namespace clips
