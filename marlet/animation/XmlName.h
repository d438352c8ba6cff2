#pragma once

#include <string_view>

namespace marlet::project
{

/// Whether a UTF-8 text can be the tag of an element: a letter or "_", then letters, digits and marks, as the
/// XML recommendation lists them. The colon, which separates namespaces, is left out.
bool IsXmlName(std::string_view utf8);

} // namespace marlet::project
