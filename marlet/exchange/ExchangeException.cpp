#include "ExchangeException.h"

namespace marlet::project
{

ExchangeException::~ExchangeException() = default;

} // namespace marlet::project
