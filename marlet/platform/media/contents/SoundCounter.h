#pragma once

#include <marlet/platform/media/contents/PacketSamples.h>
#include <marlet/platform/media/contents/PacketTable.h>
#include <marlet/platform/media/contents/SoundIndex.h>
#include <marlet/platform/media/decoding/Decoder.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kyh::media
{

/// Learns the index of an audio stream from its packets, and decodes as few of them as it takes.
class SoundCounter
{
public:
    enum class Decoding { WhatItTakes, All };

    /// `parameters` must stay as long as the counter.
    /// @throws MediaFailure if there is no decoder
    explicit SoundCounter(AVCodecParameters &parameters, Decoding decoding = Decoding::WhatItTakes);

    /// Takes in the next packet of the file, whose times are lost.
    void Add(AVPacket &packet);
    /// The same of a packet that was not read. Only if they tell by their sizes.
    void Add(const ListedPacket &packet);
    /// Whether the sizes of packets tell what they hold, as the first have shown.
    bool IsBySize() const { return rule_ == Rule::AsTold && told_.AreToldBySize(); }
    /// Whether that is still to be seen.
    bool IsUndecided() const { return rule_ == Rule::Undecided; }
    /// Whether a packet did not tell what it holds, though the first did. All must be decoded then.
    bool HasUntold() const { return hasUntold_; }
    const std::vector<PacketMark> &Packets() const { return packets_; }
    /// Nothing is added behind. @throws MediaFailure if nothing decodes
    SoundIndex Finish();

private:
    /// How many samples a packet holds is as it says, or shown by decoding it.
    enum class Rule { AsTold, ByDecoding, Undecided };

    void AddPacket(const PacketMark &mark);
    void Decode(AVPacket *packet);
    void TakeFrame();
    void AppendTold(std::optional<int> samples, int skip, int cut, bool isDiscarded);
    void Decide();
    void Append(int number, int samples, int skip, int cut, bool isDiscarded);

    PacketSamples told_;
    std::vector<std::optional<int>> toldBefore_; ///< of the packets that were decoded
    bool hasUntold_ = false;
    std::unique_ptr<DecoderFeed> decoder_; ///< until nothing more needs to be decoded
    FramePtr frame_ = NewFrame();
    Rule rule_;
    int lastNumber_ = -1; ///< of the packet that the last frame came of
    int lastDecoded_ = 0; ///< samples that came of it
    std::vector<PacketMark> packets_;
    std::vector<SoundIndex::Content> contents_;
    std::int64_t toSkip_ = 0;
    std::int64_t count_ = 0;
    SoundForm form_;
};

} // namespace kyh::media
