#pragma once

#include <marlet/foundation/xml/XmlWriter.h>

#include <initializer_list>
#include <utility>

namespace marlet::project
{

class AudioVideoSettings;

// The elements of MLT's XML that stand in many places.

void MltProperty(XmlWriter &writer, std::string_view name, std::string_view value);

/// A transition between two tracks of a tractor: over its first frames, or over all if there are none.
void MltTransition(XmlWriter &writer, std::string_view service, int lower, int upper, int frames,
                   std::initializer_list<std::pair<std::string_view, std::string_view>> properties);

/// What a format is to the program: size, rate and pixels.
void MltProfile(XmlWriter &writer, const AudioVideoSettings &settings);

} // namespace marlet::project
