#pragma once

#include <marlet/animation/PropertyValue.h>

#include <optional>
#include <string>
#include <vector>

namespace marlet::tool
{

class JsonWriter;

/// The name of the alternative that a value holds, as it stands in the file.
std::string TypeName(const project::PropertyValue &value);

/// For people: "12.5", "(1, 2, 0)", "yes"
std::string ValueText(const project::PropertyValue &value);

/// A value of the same alternative as the model, of what ValueText prints of one, with or without its
/// brackets. Nothing if the text is none.
std::optional<project::PropertyValue> ParseValue(const std::string &text,
                                                 const project::PropertyValue &model);

/// The numbers that a value consists of, X before Y before Z and red before green; none for an ID.
std::vector<double> Components(const project::PropertyValue &value);

/// A number, a boolean, an ID as text, or an array of components.
void WriteValue(JsonWriter &json, const project::PropertyValue &value);

} // namespace marlet::tool
