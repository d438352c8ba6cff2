#pragma once

#include <string>

namespace marlet::tool
{

/// Tells on standard error of something that does not keep a command from going on.
void Warn(const std::string &file, const std::string &message);

} // namespace marlet::tool
