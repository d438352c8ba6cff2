#include "Interruption.h"

#include <atomic>

namespace marlet::tool
{

namespace
{

// Any thread may run the handler.
std::atomic<bool> requested{false};
int depth = 0; ///< how many there are inside one another
static_assert(std::atomic<bool>::is_always_lock_free);

void TakeNote(int)
{
    requested = true;
}

/// What a shell lets its background jobs ignore stays ignored.
void Catch(int signal, struct sigaction &before)
{
    struct sigaction action {
    };
    action.sa_handler = TakeNote;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN)
        ::sigaction(signal, &action, nullptr);
}

} // namespace

Interruption::Interruption()
{
    if (depth++ == 0)
        requested = false;
    Catch(SIGINT, beforeInterrupt_);
    Catch(SIGTERM, beforeTerminate_);
}

Interruption::~Interruption()
{
    --depth;
    ::sigaction(SIGINT, &beforeInterrupt_, nullptr);
    ::sigaction(SIGTERM, &beforeTerminate_, nullptr);
}

bool Interruption::Requested() const
{
    return requested;
}

} // namespace marlet::tool
