#include <marlet/foundation/TextPlace.h>

#include <algorithm>

namespace marlet::project
{

void TextPlace::GoTo(std::string_view text, std::size_t to)
{
    for (to = std::min(to, text.size()); offset < to; ++offset) {
        const char c = text[offset];
        if (c == '\n' || (c == '\r' && text.substr(offset + 1, 1) != "\n")) {
            ++line;
            column = 1;
        } else if ((c & 0xC0) != 0x80) {
            ++column;
        }
    }
}

} // namespace marlet::project
