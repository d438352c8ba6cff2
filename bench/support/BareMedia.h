#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <string>
#include <vector>

namespace bench
{

using Bytes = std::vector<unsigned char>;

/// @throws std::runtime_error
void Require(bool condition);

/// Opens a file, looks for its streams and closes it; goes through its packets before that, if asked to.
void OpenBare(const std::string &path, bool readsPackets);

/// The least program that decodes the first stream of a file and converts it.
class BareLoop
{
public:
    explicit BareLoop(const std::string &path);
    BareLoop(const BareLoop &) = delete;
    BareLoop &operator=(const BareLoop &) = delete;
    ~BareLoop();

    /// Returns how many frames there were. The buffer takes each as B, G, R, A.
    int ReadAll(Bytes &buffer);
    /// The first frames as they are decoded; to be freed by whoever asks.
    std::vector<AVFrame *> Decode(int count);
    /// As B, G, R, A, or as R, G, B.
    void Convert(const AVFrame &frame, Bytes &buffer, bool hasAlpha = true);

private:
    /// False at the end.
    bool DecodeNext();

    AVFormatContext *format_ = nullptr;
    AVCodecContext *decoder_ = nullptr;
    SwsContext *toFour_ = nullptr;
    SwsContext *toThree_ = nullptr;
    AVPacket *packet_ = av_packet_alloc();
    AVFrame *frame_ = av_frame_alloc();
};

/// The least program that decodes pieces of the sound of a file.
class BareSound
{
public:
    explicit BareSound(const std::string &path);
    BareSound(const BareSound &) = delete;
    BareSound &operator=(const BareSound &) = delete;
    ~BareSound();

    /// Decodes from a seek on until all samples have come.
    void Read(int start, int count);

private:
    AVFormatContext *format_ = nullptr;
    AVCodecContext *decoder_ = nullptr;
    int stream_ = -1;
    AVPacket *packet_ = av_packet_alloc();
    AVFrame *frame_ = av_frame_alloc();
};

} // namespace bench
