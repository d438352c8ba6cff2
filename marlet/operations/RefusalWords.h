#pragma once

#include <marlet/foundation/Strings.h>

#include <string>

namespace marlet::project
{

// For the sentences of refusals.

std::string Quoted(const WideString &name);
/// "1 frame", "12 frames"
std::string CountedFrames(long long count);

} // namespace marlet::project
