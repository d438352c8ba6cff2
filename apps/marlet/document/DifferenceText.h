#pragma once

#include <marlet/compare/Difference.h>

#include <string>

namespace marlet::tool
{

class JsonWriter;

/// Where a difference is, on one line: "layer "Title", property position: static value".
std::string DifferencePlace(const project::Difference &difference);
/// "~ layer "Title": StartFrame 0 -> 7"
std::string DifferenceText(const project::Difference &difference);
/// As members of an object that is begun.
void WriteDifference(JsonWriter &json, const project::Difference &difference);

} // namespace marlet::tool
