#pragma once

#include <string>
#include <string_view>

namespace marlet::tool
{

/// A text in UTF-8 as it stands in XML and HTML, between tags and in attributes alike. Control characters,
/// which neither can hold, are left out; bytes that are no UTF-8 are replaced.
std::string EscapedMarkup(std::string_view text);

} // namespace marlet::tool
