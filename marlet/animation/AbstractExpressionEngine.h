#pragma once

#include <marlet/foundation/Export.h>

namespace marlet::project
{

/// The host's evaluator of expression texts. A project holds one for the host; nothing in this library calls
/// it.
class MARLET_EXPORT AbstractExpressionEngine
{
public:
    AbstractExpressionEngine() = default;
    AbstractExpressionEngine(const AbstractExpressionEngine &) = default;
    AbstractExpressionEngine &operator=(const AbstractExpressionEngine &) = default;
    virtual ~AbstractExpressionEngine();

    /// The host's own.
    virtual void HostOperation1() = 0;
    virtual void HostOperation2() = 0;
    virtual void HostOperation3() = 0;
};

} // namespace marlet::project
