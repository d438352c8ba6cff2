#pragma once

#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>

#include <algorithm>
#include <functional>

namespace marlet::test
{

namespace media = kyh::media;

/// A picture stream that is told what to say, and notes what it is asked. All bytes of a frame are 128.
struct FakeVideo : media::KyAbstractVideoStream {
    int width = 64;
    int height = 32;
    double pixelAspect = 1;
    double frameRate = 30;
    int fieldOrder = 0;
    media::KyVideoCodec codec = media::KyVideoCodec::Unknown;
    int code = 0;
    std::function<void()> onFrame = [] {}; ///< runs while a frame is decoded

    int calls = 0;
    int lastFrame = -1;
    int lastFlags = -1;
    unsigned char *lastBuffer = nullptr;

    int Width() const override { return width; }
    int Height() const override { return height; }
    double PixelAspectRatio() const override { return pixelAspect; }
    int FrameCount() const override { return 100; }
    double FrameRate() const override { return frameRate; }
    int FieldOrder() const override { return fieldOrder; }
    media::KyVideoCodec Codec() const override { return codec; }
    std::shared_ptr<media::KyAbstractCodecInfo> CodecInfo() const override { return nullptr; }
    int PixelBitCount() const override { return 32; }
    media::KyChannelOrder PixelChannelOrder() const override { return media::KyChannelOrder::BGRA; }
    int FrameBufferSize(media::KyImageChannels) const override { return width * height * 4; }
    int GetFrame(int frame, media::KyImageChannels, unsigned char *buffer, int size, int *,
                 int flags) override
    {
        ++calls;
        lastFrame = frame;
        lastFlags = flags;
        lastBuffer = buffer;
        onFrame();
        if (code == 0)
            std::fill_n(buffer, std::min(size, width * height * 4), static_cast<unsigned char>(128));
        return code;
    }
};

struct FakeAudio : media::KyAbstractAudioStream {
    unsigned int sampleRate = 48000;
    unsigned long long sampleCount = 48000;

    unsigned int SampleRate() const override { return sampleRate; }
    unsigned char BitsPerSample() const override { return 16; }
    unsigned char ChannelCount() const override { return 2; }
    unsigned long long SampleCount() const override { return sampleCount; }
    kytl::NarrowString DurationTimeCode() const override { return {}; }
    media::KyAudioCodec Codec() const override { return media::KyAudioCodec::PCM; }
    std::shared_ptr<media::KyAbstractCodecInfo> CodecInfo() const override { return nullptr; }
    int GetSamples(long long, int, unsigned char *, int, int *) override { return 0; }
};

struct FakeFile : media::KyAbstractMediaFile {
    std::shared_ptr<FakeVideo> video = std::make_shared<FakeVideo>();
    std::shared_ptr<FakeAudio> audio = std::make_shared<FakeAudio>();
    int wakeCode = 0;
    int state = 0;
    int relinks = 0;

    std::shared_ptr<media::KyAbstractMediaStream> Stream(int kind) override
    {
        if (kind == media::kVideoStream)
            return video;
        return audio;
    }
    void NotifyRelinked() override { ++relinks; }
    int Wake() override { return wakeCode; }
    int Sleep() override { return 0; }
    int State() const override { return state; }
};

/// Hands an asset a file that no manager opened, with the code of its opening.
void Hand(project::MediaAsset &asset, media::KyAbstractMediaFile *file, int code);

/// Points an asset at such a file, as a manager relinks it.
void Relink(project::MediaAsset &asset, media::KyAbstractMediaFile *file, int code);

/// What an explicit instantiation names may be private, which is all that makes these possible.
template <auto SetFile, auto SetStatus, auto RelinkTo> struct Handing {
    friend void Hand(project::MediaAsset &asset, media::KyAbstractMediaFile *file, int code)
    {
        (asset.*SetFile)(file);
        (asset.*SetStatus)(code);
    }
    friend void Relink(project::MediaAsset &asset, media::KyAbstractMediaFile *file, int code)
    {
        (asset.*RelinkTo)(u"/no/such/other.mov", file, code);
    }
};
template struct Handing<&project::MediaAsset::SetMediaFile, &project::MediaAsset::SetMediaFileStatus,
                        &project::MediaAsset::Relink>;

/// An asset of a fake file.
struct FakeMedia {
    FakeFile file;
    project::MediaManager manager;
    std::shared_ptr<project::MediaAsset> asset = manager.CreateMediaAsset(u"/no/such/clip.mov");

    FakeMedia() { Hand(*asset, &file, 0); }
};

} // namespace marlet::test
