#pragma once

#include <marlet/animation/PropertyValue.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;

/// Writes one element, named by the tag of the alternative.
void WriteValue(XmlWriter &writer, const PropertyValue &value);

/// Reads the first child element of the parent. Without one, or with one of an unknown tag, the value stays.
/// @throws XmlParseException, std::runtime_error, boost::bad_lexical_cast
void ReadValue(const XmlCursor &parent, PropertyValue &value);

} // namespace marlet::project
