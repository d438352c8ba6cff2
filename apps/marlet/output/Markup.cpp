#include "Markup.h"

#include <marlet/foundation/Strings.h>

namespace marlet::tool
{

std::string EscapedMarkup(std::string_view text)
{
    std::string escaped;
    for (const char c : project::ToUtf8(project::FromUtf8(text))) {
        if (c == '<')
            escaped += "&lt;";
        else if (c == '&')
            escaped += "&amp;";
        else if (c == '"')
            escaped += "&quot;";
        else if (static_cast<unsigned char>(c) >= ' ')
            escaped += c;
        else if (c == '\n' || c == '\t')
            escaped += ' ';
    }
    return escaped;
}

} // namespace marlet::tool
