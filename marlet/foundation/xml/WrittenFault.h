#pragma once

#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/xml/WellFormed.h>

#include <string_view>

namespace marlet::project
{

/// The entry of a text that is not well-formed: what is wrong, the elements that are open there with their
/// names and lines, and the other place that has to do with it.
LoadEntry WrittenFault(const XmlFault &fault, std::string_view text);

} // namespace marlet::project
