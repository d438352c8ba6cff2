#pragma once

#include <marlet/compare/Difference.h>
#include <marlet/compare/DocumentText.h>

namespace marlet::project
{

/// What differs between two elements, which are both roots.
std::vector<Difference> CompareElements(const TextElement &before, const TextElement &after);

/// The text of a root with differences applied to it. @throws OperationException as ApplyToText
NarrowString Patched(const TextElement &root, const std::vector<Difference> &differences);

/// A text in UTF-8. @throws XmlParseException if it is not whole
NarrowString WholeText(const WideString &text);

} // namespace marlet::project
