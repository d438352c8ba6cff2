#pragma once

#include <marlet/foundation/Export.h>

#include <string>
#include <string_view>

namespace kytl
{

/// Text of the exported interface: UTF-16.
using WideString = std::u16string;
/// Property names and IDs in text form.
using NarrowString = std::string;

} // namespace kytl

namespace marlet::project
{

using kytl::NarrowString;
using kytl::WideString;

/// UTF-16 to UTF-8. A surrogate without its partner becomes U+FFFD.
MARLET_EXPORT NarrowString ToUtf8(std::u16string_view text);

/// UTF-8 to UTF-16. Bytes that are no UTF-8 become U+FFFD, one for each maximal part of a sequence.
MARLET_EXPORT WideString FromUtf8(std::string_view text);

} // namespace marlet::project
