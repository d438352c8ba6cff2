#pragma once

#include <vector>

namespace marlet::project
{

class ExchangeFormat;

/// All formats that the library knows. Each stands in a folder of its own and is named here alone.
std::vector<const ExchangeFormat *> Formats();

} // namespace marlet::project
