#pragma once

#include <marlet/compare/DocumentText.h>

namespace marlet::project
{

// How elements of a document are told apart, and what people call them.

/// The element that holds what every object of its kind has: of a layer its LayerBase, otherwise itself.
TextElement BaseOf(const TextElement &element);

/// The keys by which children are found again among those of another version of their owner: the tag with the
/// ID, for a key frame the time, or else a name of any kind. What is known by its tag alone, and what has the
/// key of one before it, is numbered.
std::vector<NarrowString> KeysOf(const TextElement &owner, const std::vector<TextElement> &children);

/// Whether the order of an element's children follows from what they hold.
bool IsSorted(const TextElement &owner);

/// Whether an element is one value, whatever it is made of.
bool IsValue(const TextElement &element);

/// A value on one line: "12.5", "(1, 2, 0)".
NarrowString ValueText(const TextElement &element);

/// "layer "Title""; empty for what only holds others together. The owner may be null.
NarrowString NameOf(const TextElement &element, const TextElement &owner);

/// What people call an element that holds no others.
NarrowString FieldNameOf(const TextElement &element, const TextElement &owner);

/// Where on its track an object is, since several often have one name.
NarrowString SpanOf(const TextElement &element);

} // namespace marlet::project
