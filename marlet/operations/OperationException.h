#pragma once

#include <marlet/foundation/Export.h>

#include <stdexcept>

namespace marlet::project
{

/// An operation that cannot be done as asked. Nothing was changed. The sentence says why, for the user.
class MARLET_EXPORT OperationException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
    ~OperationException() override;
};

} // namespace marlet::project
