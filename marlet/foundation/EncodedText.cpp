#include <marlet/foundation/EncodedText.h>

namespace marlet::project
{

EncodedText::EncodedText(std::string_view file) : bytes(file)
{
    constexpr struct {
        std::string_view mark;
        Encoding encoding;
    } kMarks[] = {{"\xFF\xFE", Encoding::Utf16Little},
                  {"\xFE\xFF", Encoding::Utf16Big},
                  {"\xEF\xBB\xBF", Encoding::Utf8}};
    for (const auto &known : kMarks) {
        if (!file.starts_with(known.mark))
            continue;
        encoding = known.encoding;
        bytes.remove_prefix(known.mark.size());
        return;
    }
}

WideString DecodeUtf16(const EncodedText &text)
{
    const bool isBig = text.encoding == EncodedText::Encoding::Utf16Big;
    WideString decoded(text.bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < decoded.size(); ++i) {
        const auto first = static_cast<unsigned char>(text.bytes[2 * i]);
        const auto second = static_cast<unsigned char>(text.bytes[2 * i + 1]);
        decoded[i] = static_cast<char16_t>(isBig ? first << 8 | second : second << 8 | first);
    }
    return decoded;
}

} // namespace marlet::project
