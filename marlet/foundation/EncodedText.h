#pragma once

#include <marlet/foundation/Strings.h>

#include <string_view>

namespace marlet::project
{

/// The bytes of a text file behind the byte order mark that says what they are.
struct EncodedText {
    enum class Encoding { Utf8, Utf16Little, Utf16Big };

    /// Without a mark it is UTF-8.
    explicit EncodedText(std::string_view file);

    Encoding encoding = Encoding::Utf8;
    std::string_view bytes;

    bool IsUtf16() const { return encoding != Encoding::Utf8; }
};

/// Of bytes in UTF-16; the half of a unit at their end is left out.
WideString DecodeUtf16(const EncodedText &text);

} // namespace marlet::project
