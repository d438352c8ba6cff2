#pragma once

#include <marlet/compare/Difference.h>
#include <marlet/compare/DocumentText.h>

namespace marlet::project
{

/// What differs between two elements, which are both roots.
std::vector<Difference> CompareElements(const TextElement &before, const TextElement &after);

/// What of an element's differences makes it into another one. Differences are those of the root.
NarrowString Patched(const TextElement &root, const std::vector<Difference> &differences);

/// A text that is whole, as one of UTF-8. @throws XmlParseException
NarrowString WholeText(const WideString &text);

} // namespace marlet::project
