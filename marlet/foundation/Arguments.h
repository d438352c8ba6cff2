#pragma once

#include <stdexcept>
#include <string>

namespace marlet::project
{

/// Refuses an argument that is left empty.
/// @param name what the argument is, as the words of the failure call it: "layer", "time code"
/// @throws std::invalid_argument
template <class Pointer> void Require(const Pointer &argument, const char *name)
{
    if (!argument)
        throw std::invalid_argument(std::string("The ") + name + " must not be null");
}

} // namespace marlet::project
