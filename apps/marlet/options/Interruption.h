#pragma once

#include <csignal>

namespace marlet::tool
{

/// Takes note of Ctrl-C and of a request to end while it lives, in place of ending the process. One inside of
/// another leaves what it noted to that. Belongs to the main thread.
class Interruption
{
public:
    Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;
    ~Interruption();

    bool Requested() const;

private:
    struct sigaction beforeInterrupt_;
    struct sigaction beforeTerminate_;
};

} // namespace marlet::tool
