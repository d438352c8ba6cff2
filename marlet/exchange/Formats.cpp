#include "Formats.h"

namespace marlet::project
{

std::vector<const ExchangeFormat *> Formats()
{
    return {};
}

} // namespace marlet::project
