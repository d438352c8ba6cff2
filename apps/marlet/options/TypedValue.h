#pragma once

#include <marlet/animation/PropertyValue.h>

#include <string>
#include <vector>

namespace marlet::tool
{

class JsonWriter;

/// The name of the alternative that a value holds, as it stands in the file.
std::string TypeName(const project::PropertyValue &value);

/// For people: "12.5", "(1, 2, 0)", "yes"
std::string ValueText(const project::PropertyValue &value);

/// The numbers that a value consists of, X before Y before Z and red before green; none for an ID.
std::vector<double> Components(const project::PropertyValue &value);

/// A number, a boolean, an ID as text, or an array of components.
void WriteValue(JsonWriter &json, const project::PropertyValue &value);

} // namespace marlet::tool
