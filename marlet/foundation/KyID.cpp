#include <marlet/foundation/KyID.h>

#include <atomic>
#include <random>
#include <stdexcept>

#include <pthread.h>

namespace kytl
{

namespace
{

constexpr std::size_t kTextLength = 36;
constexpr std::size_t kByteCount = 16;

/// Where the two digits of each byte stand in the text form.
constexpr std::uint8_t kDigitPositions[kByteCount] = {0,  2,  4,  6,  9,  11, 14, 16,
                                                      19, 21, 24, 26, 28, 30, 32, 34};
constexpr std::uint8_t kDashPositions[] = {8, 13, 18, 23};

/// How many forks lie between the process and the first one that made IDs.
std::atomic<unsigned int> forks = 0;

/// A generator that is seeded from the operating system: a child process has a copy of its parent's state and
/// would make the same IDs.
class Generator
{
public:
    Generator() { Seed(); }

    std::uint64_t operator()()
    {
        if (forks_ != forks.load(std::memory_order_relaxed))
            Seed();
        return engine_();
    }

private:
    void Seed()
    {
        static const int watched =
            pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1, std::memory_order_relaxed); });
        static_cast<void>(watched);
        forks_ = forks.load(std::memory_order_relaxed);
        std::random_device system;
        std::seed_seq seed{system(), system(), system(), system(), system(), system(), system(), system()};
        engine_.seed(seed);
    }

    std::mt19937_64 engine_;
    unsigned int forks_ = 0;
};

KyID FromBytes(const std::uint8_t (&bytes)[kByteCount])
{
    KyID id;
    id.Data1 = std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 |
               bytes[3];
    id.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    id.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i)
        id.Data4[i] = bytes[8 + i];
    return id;
}

std::uint8_t ByteOf(const KyID &id, std::size_t index)
{
    if (index < 4)
        return static_cast<std::uint8_t>(id.Data1 >> 8 * (3 - index));
    if (index < 6)
        return static_cast<std::uint8_t>(id.Data2 >> 8 * (5 - index));
    if (index < 8)
        return static_cast<std::uint8_t>(id.Data3 >> 8 * (7 - index));
    return id.Data4[index - 8];
}

/// 0 to 15, or a number above for what is no digit.
template <class Char> unsigned int DigitValue(Char c)
{
    if (c >= Char('0') && c <= Char('9'))
        return c - Char('0');
    if (c >= Char('a') && c <= Char('f'))
        return c - Char('a') + 10u;
    if (c >= Char('A') && c <= Char('F'))
        return c - Char('A') + 10u;
    return 16;
}

template <class Char> KyID Parse(std::basic_string_view<Char> text)
{
    bool valid = text.size() == kTextLength;
    for (std::size_t i = 0; valid && i < std::size(kDashPositions); ++i)
        valid = text[kDashPositions[i]] == Char('-');
    std::uint8_t bytes[kByteCount] = {};
    for (std::size_t i = 0; valid && i < kByteCount; ++i) {
        const unsigned int high = DigitValue(text[kDigitPositions[i]]);
        const unsigned int low = DigitValue(text[kDigitPositions[i] + 1u]);
        valid = high < 16 && low < 16;
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    if (!valid)
        throw std::runtime_error("Cannot construct KyID from string");
    return FromBytes(bytes);
}

} // namespace

KyID KyID::Generate()
{
    thread_local Generator generator;
    const std::uint64_t high = generator();
    const std::uint64_t low = generator();
    KyID id;
    id.Data1 = static_cast<std::uint32_t>(high >> 32);
    id.Data2 = static_cast<std::uint16_t>(high >> 16);
    id.Data3 = static_cast<std::uint16_t>((high & 0x0FFF) | 0x4000);
    for (std::size_t i = 0; i < 8; ++i)
        id.Data4[i] = static_cast<std::uint8_t>(low >> 8 * i);
    id.Data4[0] = static_cast<std::uint8_t>((id.Data4[0] & 0x3F) | 0x80);
    return id;
}

KyID KyID::FromString(std::string_view text)
{
    return Parse(text);
}

KyID KyID::FromString(std::u16string_view text)
{
    return Parse(text);
}

std::array<char, 36> KyID::ToCharacters() const
{
    constexpr char digits[] = "0123456789abcdef";
    std::array<char, kTextLength> text;
    for (const std::uint8_t position : kDashPositions)
        text[position] = '-';
    for (std::size_t i = 0; i < kByteCount; ++i) {
        const std::uint8_t byte = ByteOf(*this, i);
        text[kDigitPositions[i]] = digits[byte >> 4];
        text[kDigitPositions[i] + 1u] = digits[byte & 0x0F];
    }
    return text;
}

WideString KyID::ToWideString() const
{
    const auto text = ToCharacters();
    return WideString(text.begin(), text.end());
}

NarrowString KyID::ToNarrowString() const
{
    const auto text = ToCharacters();
    return NarrowString(text.begin(), text.end());
}

std::uint32_t KyID::Hash() const
{
    std::uint32_t hash = 0;
    const auto fold = [&hash](std::uint32_t value) {
        hash ^= value + 0x9E3779B9u + (hash << 6) + (hash >> 2);
    };
    fold(Data1);
    fold(Data2);
    fold(Data3);
    for (const std::uint8_t byte : Data4)
        fold(byte);
    return hash;
}

} // namespace kytl
