#pragma once

namespace marlet::project
{

/// Selects the constructor that reads from XML, where a class has one from a name with the same first
/// argument.
struct Deserializer {
};

} // namespace marlet::project
