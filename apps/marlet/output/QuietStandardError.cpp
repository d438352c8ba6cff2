#include "QuietStandardError.h"

#include <fcntl.h>
#include <unistd.h>

namespace marlet::tool
{

QuietStandardError::QuietStandardError() : kept_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
{
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept_ >= 0 && nowhere >= 0)
        ::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0)
        ::close(nowhere);
}

QuietStandardError::~QuietStandardError()
{
    if (kept_ < 0)
        return;
    ::dup2(kept_, STDERR_FILENO);
    ::close(kept_);
}

} // namespace marlet::tool
