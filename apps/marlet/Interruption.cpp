#include "Interruption.h"

#include <atomic>

namespace marlet::tool
{

namespace
{

// Any thread may run the handler.
std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void TakeNote(int)
{
    requested = true;
}

} // namespace

Interruption::Interruption()
{
    requested = false;
    struct sigaction action {
    };
    action.sa_handler = TakeNote;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, &beforeInterrupt_);
    ::sigaction(SIGTERM, &action, &beforeTerminate_);
}

Interruption::~Interruption()
{
    ::sigaction(SIGINT, &beforeInterrupt_, nullptr);
    ::sigaction(SIGTERM, &beforeTerminate_, nullptr);
}

bool Interruption::Requested() const
{
    return requested;
}

} // namespace marlet::tool
