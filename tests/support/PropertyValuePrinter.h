#pragma once

#include <marlet/animation/PropertyValue.h>
#include <marlet/animation/PropertyValueXml.h>
#include <marlet/foundation/xml/XmlWriter.h>

#include <ostream>

namespace marlet::project
{

/// What a failed comparison shows of a value: its element.
inline void PrintTo(const PropertyValue &value, std::ostream *stream)
{
    *stream << ToUtf8(XmlText([&value](XmlWriter &writer) { WriteValue(writer, value); }));
}

} // namespace marlet::project
