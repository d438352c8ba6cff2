#pragma once

#include <marlet/platform/media/LibavHandles.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The bytes of what is kept of a file, number after number.
namespace kyh::media::form
{

/// Thrown by reading.
struct Damaged {
};

inline void Require(bool condition)
{
    if (!condition)
        throw Damaged();
}

/// Writes numbers in as few bytes as they need, seven bits in each. Reading has the same operations, so that
/// both directions share the descriptions below.
class Writing
{
public:
    void Number(std::int64_t number)
    {
        const auto bits = static_cast<std::uint64_t>(number);
        // Small numbers below 0 are small as well.
        std::uint64_t rest = bits << 1 ^ (number < 0 ? ~std::uint64_t{0} : 0);
        for (; rest > 127; rest >>= 7)
            bytes_.push_back(static_cast<char>(rest | 128));
        bytes_.push_back(static_cast<char>(rest));
    }
    void Text(std::string_view text)
    {
        Number(static_cast<std::int64_t>(text.size()));
        bytes_ += text;
    }
    std::string &Bytes() { return bytes_; }

private:
    std::string bytes_;
};

class Reading
{
public:
    explicit Reading(std::string_view bytes) : left_(bytes) {}

    std::int64_t Number()
    {
        std::uint64_t bits = 0;
        for (int shift = 0;; shift += 7) {
            Require(!left_.empty() && shift < 64);
            const auto byte = static_cast<unsigned char>(left_.front());
            left_.remove_prefix(1);
            bits |= std::uint64_t{byte & 127u} << shift;
            if (byte < 128)
                break;
        }
        return static_cast<std::int64_t>(bits >> 1 ^ (bits & 1 ? ~std::uint64_t{0} : 0));
    }
    std::string_view Text()
    {
        const std::size_t size = Size();
        const std::string_view text = left_.substr(0, size);
        left_.remove_prefix(size);
        return text;
    }
    /// Of something that takes at least a byte for each.
    std::size_t Size()
    {
        const std::int64_t size = Number();
        Require(size >= 0 && static_cast<std::uint64_t>(size) <= left_.size());
        return static_cast<std::size_t>(size);
    }
    bool IsAtEnd() const { return left_.empty(); }

private:
    std::string_view left_;
};

template <class Integer> void Field(Writing &to, const Integer &value)
{
    to.Number(static_cast<std::int64_t>(value));
}

template <class Integer> void Field(Reading &from, Integer &value)
{
    const std::int64_t number = from.Number();
    value = static_cast<Integer>(number);
    Require(static_cast<std::int64_t>(value) == number);
}

inline void Field(Reading &from, AVCodecID &codec)
{
    const std::int64_t number = from.Number();
    Require(number >= 0 && number <= AV_CODEC_ID_WRAPPED_AVFRAME);
    codec = static_cast<AVCodecID>(number);
}

inline void Field(Reading &from, AVSampleFormat &format)
{
    const std::int64_t number = from.Number();
    Require(number >= 0 && number < AV_SAMPLE_FMT_NB);
    format = static_cast<AVSampleFormat>(number);
}

inline void Field(Writing &to, const double &value)
{
    to.Number(std::bit_cast<std::int64_t>(value));
}

inline void Field(Reading &from, double &value)
{
    value = std::bit_cast<double>(from.Number());
}

/// As what it is more than the one before, which mostly stays the same from packet to packet.
template <class Integer> void Step(Writing &to, const Integer &value, std::uint64_t &before)
{
    const auto bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
    to.Number(static_cast<std::int64_t>(bits - std::exchange(before, bits)));
}

template <class Integer> void Step(Reading &from, Integer &value, std::uint64_t &before)
{
    before += static_cast<std::uint64_t>(from.Number());
    const auto number = static_cast<std::int64_t>(before);
    value = static_cast<Integer>(number);
    Require(static_cast<std::int64_t>(value) == number);
}

template <class Item> void Sized(Writing &to, const std::vector<Item> &items)
{
    Field(to, items.size());
}

template <class Item> void Sized(Reading &from, std::vector<Item> &items)
{
    items.resize(from.Size());
}

template <class Form, class... Values> void Fields(Form &form, Values &...values)
{
    (Field(form, values), ...);
}

} // namespace kyh::media::form
