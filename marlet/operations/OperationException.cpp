#include <marlet/operations/OperationException.h>

namespace marlet::project
{

OperationException::~OperationException() = default;

} // namespace marlet::project
