#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace marlet::project
{

/// Finds where runs of characters of one class end, which is most of the work of reading a text strictly. The
/// characters are told apart in blocks, one bit for each, so that a short run costs no more than a shift.
class CharacterBlocks
{
public:
    explicit CharacterBlocks(std::string_view text);

    /// The first character that is no ASCII character of a name; the end of the text at last, as below.
    const char *EndOfName(const char *at) { return Find(at, ends_.ofName); }
    /// The first that is "<", "&", "]", beyond ASCII, or a control that is no blank.
    const char *EndOfText(const char *at) { return Find(at, ends_.ofText); }
    /// The same with the double quote in place of "]".
    const char *EndOfValue(const char *at) { return Find(at, ends_.ofValue); }

    /// The bits of the characters at which runs end.
    struct Ends {
        std::uint64_t ofName = 0;
        std::uint64_t ofText = 0;
        std::uint64_t ofValue = 0;
    };

private:
    static constexpr std::size_t kBlock = 64;

    const char *Find(const char *at, const std::uint64_t &ends)
    {
        for (;;) {
            std::size_t place = static_cast<std::size_t>(at - block_);
            if (place >= kBlock) {
                Load(at);
                place = static_cast<std::size_t>(at - block_);
            }
            const std::uint64_t rest = ends >> place;
            if (rest != 0)
                return at + std::countr_zero(rest);
            at = block_ + kBlock;
        }
    }

    void Load(const char *at);

    const char *begin_;
    const char *end_;
    const char *block_;
    Ends ends_;
};

} // namespace marlet::project
