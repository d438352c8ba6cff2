#pragma once

#include <marlet/foundation/Export.h>

#include <stdexcept>

namespace marlet::project
{

/// A text that is not in the form that it should be in. The sentence says what is wrong, and in which line
/// where the form has lines.
class MARLET_EXPORT ExchangeException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
    ~ExchangeException() override;
};

} // namespace marlet::project
