#include <marlet/platform/media/contents/PictureOrder.h>

#include <marlet/platform/media/contents/PictureHeaders.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace kyh::media
{

namespace
{

bool HasNumbers(AVCodecID codec)
{
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC;
}

bool HasTypes(AVCodecID codec)
{
    return codec == AV_CODEC_ID_MPEG1VIDEO || codec == AV_CODEC_ID_MPEG2VIDEO || codec == AV_CODEC_ID_MPEG4;
}

/// Fields come out by themselves only in HEVC.
bool IsFrame(const AVCodecParserContext &parser, AVCodecID codec)
{
    return codec == AV_CODEC_ID_HEVC || parser.picture_structure == AV_PICTURE_STRUCTURE_FRAME;
}

} // namespace

bool PictureOrder::IsTold(AVCodecID codec)
{
    return HasNumbers(codec) || HasTypes(codec);
}

PictureOrder::PictureOrder(const AVCodecParameters &parameters)
    : codec_(parameters.codec_id), mayReorder_(codec_ == AV_CODEC_ID_MPEG1VIDEO)
{
    if (const auto header = FindSequenceHeader(codec_, SplitAtStartCodes(HeaderOf(parameters))))
        mayReorder_ = header->mayReorder;
    if (!HasNumbers(codec_))
        return;
    context_ = Allocated(CodecPtr(avcodec_alloc_context3(nullptr)));
    parser_.reset(av_parser_init(codec_));
    isKnown_ = parser_ && avcodec_parameters_to_context(context_.get(), &parameters) >= 0;
    if (parser_)
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

void PictureOrder::Add(const AVPacket &packet)
{
    // Mostly times turn out to be there, or to be missing from the beginning.
    constexpr std::size_t kMostWaiting = 16;
    if (isNeeded_ || !isKnown_) {
        AddNext(packet);
        return;
    }
    waiting_.push_back(Allocated(PacketPtr(av_packet_clone(&packet))));
    isNeeded_ = packet.pts == AV_NOPTS_VALUE;
    isKnown_ = isNeeded_ || waiting_.size() < kMostWaiting;
    if (isNeeded_)
        for (const PacketPtr &waiting : waiting_)
            AddNext(*waiting);
    if (isNeeded_ || !isKnown_)
        waiting_.clear();
}

void PictureOrder::AddNext(const AVPacket &packet)
{
    if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0 || (places_.empty() && !(packet.flags & AV_PKT_FLAG_KEY)))
        isKnown_ = false;
    if (!isKnown_)
        return;
    if (HasNumbers(codec_))
        AddByNumber(packet);
    else
        AddByType(packet);
}

/// A picture that others are predicted from is shown when the next of that kind is decoded.
void PictureOrder::AddByType(const AVPacket &packet)
{
    const std::vector<Bytes> units = SplitAtStartCodes(BytesOf(packet));
    if (const auto header = FindSequenceHeader(codec_, units))
        mayReorder_ = header->mayReorder;
    const auto picture = FindPictureHeader(codec_, units);
    const auto number = static_cast<std::int64_t>(places_.size());
    // What is predicted from both sides needs both, and a sequence that allows it.
    isKnown_ = picture && (picture->isReference || (references_ >= 2 && mayReorder_));
    if (!isKnown_)
        return;
    if (!picture->isReference) {
        places_.push_back(2 * number);
        return;
    }
    if (reference_ >= 0)
        places_[static_cast<std::size_t>(reference_)] = 2 * number - 1;
    ++references_;
    reference_ = static_cast<int>(number);
    places_.push_back(std::numeric_limits<std::int64_t>::max());
}

/// Pictures say their place behind the last that began anew.
void PictureOrder::AddByNumber(const AVPacket &packet)
{
    // Further back there is no picture that was not shown long ago: the numbers began anew unseen.
    constexpr int kFarthestBack = 128;
    constexpr std::int64_t kGroup = std::int64_t{1} << 33;
    std::uint8_t *bytes = nullptr;
    int size = 0;
    parser_->pict_type = AV_PICTURE_TYPE_NONE;
    parser_->key_frame = -1;
    av_parser_parse2(parser_.get(), context_.get(), &bytes, &size, packet.data, packet.size, AV_NOPTS_VALUE,
                     AV_NOPTS_VALUE, -1);
    const std::int64_t number = parser_->output_picture_number;
    const bool isKey = parser_->key_frame == 1;
    const bool isFirst = places_.empty();
    const bool beginsGroup = isFirst || (isKey && number == 0);
    if (beginsGroup)
        ++group_;
    const std::int64_t place = group_ * kGroup + number;
    const bool isInReach = beginsGroup || number > (isKey ? highest_ : highest_ - kFarthestBack);
    isKnown_ = parser_->pict_type != AV_PICTURE_TYPE_NONE && IsFrame(*parser_, codec_) && isInReach &&
               (isFirst || place > places_.front());
    highest_ = beginsGroup ? number : std::max(highest_, number);
    places_.push_back(place);
}

std::optional<std::vector<int>> PictureOrder::Packets() const
{
    if (!isKnown_ || places_.empty())
        return std::nullopt;
    std::vector<int> order(places_.size());
    std::iota(order.begin(), order.end(), 0);
    const auto placeOf = [this](int packet) { return places_[static_cast<std::size_t>(packet)]; };
    std::ranges::sort(order, {}, placeOf);
    const bool isClear = std::ranges::adjacent_find(order, {}, placeOf) == order.end();
    return isClear ? std::optional(std::move(order)) : std::nullopt;
}

} // namespace kyh::media
