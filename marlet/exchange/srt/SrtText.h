#pragma once

#include <marlet/foundation/Strings.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace marlet::project
{

struct ExchangeOptions;

/// What tags say of a part of a text.
struct SrtStyle {
    bool isBold = false;
    bool isItalic = false;
    std::optional<std::uint32_t> color = {}; ///< 0xRRGGBB

    bool operator==(const SrtStyle &) const = default;
};

struct SrtRun {
    std::size_t first = 0; ///< in UTF-16 units of the text
    std::size_t count = 0;
    SrtStyle style;
};

/// One subtitle. Times are in milliseconds.
struct Subtitle {
    std::int64_t start = 0;
    std::int64_t end = 0;
    WideString text;          ///< with u'\n' between lines
    std::vector<SrtRun> runs; ///< of the parts with a style, in order
};

/// The subtitles of a text in their order, whatever its line ends; numbers may be missing, and blank lines
/// between the subtitles. What is passed over is told with its line.
/// @throws ExchangeException if there is none in a text that is not blank
std::vector<Subtitle> ParseSrt(std::string_view bytes, const ExchangeOptions &options);

/// The reverse, in UTF-8 with CR and LF, as most programs write it. Blank lines inside of a subtitle are left
/// out, since they would end it.
NarrowString SrtTextOf(const std::vector<Subtitle> &subtitles);

} // namespace marlet::project
