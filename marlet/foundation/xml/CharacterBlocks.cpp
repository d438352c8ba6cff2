#include <marlet/foundation/xml/CharacterBlocks.h>

#include <marlet/foundation/xml/XmlCharacters.h>

#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace marlet::project
{

namespace
{

#ifdef __SSE2__

constexpr std::size_t kAtOnce = 16;

__m128i Are(__m128i characters, char c)
{
    return _mm_cmpeq_epi8(characters, _mm_set1_epi8(c));
}

__m128i AreWithin(__m128i characters, char first, char last)
{
    const __m128i distance = _mm_sub_epi8(characters, _mm_set1_epi8(first));
    const __m128i bound = _mm_set1_epi8(static_cast<char>(last - first));
    return _mm_cmpeq_epi8(_mm_min_epu8(distance, bound), distance);
}

__m128i AreOfName(__m128i characters)
{
    const __m128i letters = AreWithin(characters | _mm_set1_epi8(0x20), 'a', 'z');
    const __m128i others = _mm_andnot_si128(Are(characters, '/'), AreWithin(characters, '-', ':'));
    return letters | others | Are(characters, '_');
}

/// Controls that are no blanks, and bytes beyond ASCII, which are negative.
__m128i AreOdd(__m128i characters)
{
    const __m128i blanks = AreWithin(characters, '\t', '\n') | Are(characters, '\r');
    return _mm_andnot_si128(blanks, _mm_cmplt_epi8(characters, _mm_set1_epi8(0x20)));
}

std::uint64_t Bits(__m128i flags)
{
    return static_cast<std::uint32_t>(_mm_movemask_epi8(flags));
}

CharacterBlocks::Ends EndsAmong(const char *at)
{
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
    const __m128i always = AreOdd(characters) | Are(characters, '<') | Are(characters, '&');
    return {Bits(AreOfName(characters)) ^ 0xFFFF, Bits(always | Are(characters, ']')),
            Bits(always | Are(characters, '"'))};
}

#else

constexpr std::size_t kAtOnce = 1;

CharacterBlocks::Ends EndsAmong(const char *at)
{
    const char c = *at;
    const bool isAscii = static_cast<unsigned char>(c) < 0x80;
    const bool isOdd = !isAscii || (c < 0x20 && !IsXmlBlank(c));
    const bool isAlways = isOdd || c == '<' || c == '&';
    const bool isOfName = isAscii && IsXmlNameCharacter(static_cast<char32_t>(c));
    return {!isOfName, isAlways || c == ']', isAlways || c == '"'};
}

#endif

} // namespace

CharacterBlocks::CharacterBlocks(std::string_view text)
    : begin_(text.data()), end_(begin_ + text.size()), block_(begin_)
{
    Load(begin_);
}

void CharacterBlocks::Load(const char *at)
{
    block_ = begin_ + (static_cast<std::size_t>(at - begin_) / kBlock * kBlock);
    const char *characters = block_;
    // Behind the text every run ends.
    char last[kBlock] = {};
    if (const auto length = static_cast<std::size_t>(end_ - block_); length < kBlock) {
        std::copy_n(block_, length, last);
        characters = last;
    }
    Ends all;
    for (std::size_t i = 0; i < kBlock; i += kAtOnce) {
        const Ends ends = EndsAmong(characters + i);
        all.ofName |= ends.ofName << i;
        all.ofText |= ends.ofText << i;
        all.ofValue |= ends.ofValue << i;
    }
    ends_ = all;
}

} // namespace marlet::project
