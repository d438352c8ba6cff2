#pragma once

#include <string>

namespace marlet::project
{
class PropertyManager;
}

namespace marlet::tool
{

/// A picture of an animated property as SVG: its value over time, with key frames and their handles; of a
/// point that moves along a path also the path in the plane, with its tangents and dots at equal steps of
/// time. A property without key frames is drawn over its first second.
std::string CurvePicture(const project::PropertyManager &properties, const std::string &name);
/// The same curve without words, as an SVG element of 144 by 24 that stands in a page: a line for each
/// component, of the classes c0 to c3.
std::string Sparkline(const project::PropertyManager &properties, const std::string &name);

} // namespace marlet::tool
