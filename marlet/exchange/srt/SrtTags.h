#pragma once

#include <marlet/exchange/srt/SrtText.h>

namespace marlet::project
{

/// A text whose tags have become styles.
struct SrtTagged {
    WideString text;
    std::vector<SrtRun> runs;
    std::vector<NarrowString> unknown; ///< tags that nothing came of
};

/// Takes <b>, <i> and <font color> out of a text, in braces too, and tells of others that programs write.
/// Anything else in brackets is text.
SrtTagged WithoutTags(std::u16string_view text);
/// The reverse.
WideString WithTags(const Subtitle &subtitle);

} // namespace marlet::project
