#include "document/WatchedFile.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marlet::tool
{

namespace
{

constexpr std::chrono::milliseconds kBetweenLooks(100);

/// The tool ignores some signals, which is not to be handed on.
class PlainSignals
{
public:
    PlainSignals()
    {
        sigset_t usual;
        sigemptyset(&usual);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            sigaddset(&usual, signal);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigdefault(&attributes_, &usual);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
    }
    PlainSignals(const PlainSignals &) = delete;
    PlainSignals &operator=(const PlainSignals &) = delete;
    ~PlainSignals() { ::posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t *Attributes() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

/// Starts the words behind the file's name as a program. @throws Failure
pid_t Start(const std::vector<std::string> &words)
{
    std::vector<char *> arguments;
    for (std::size_t i = 1; i < words.size(); ++i)
        arguments.push_back(const_cast<char *>(words[i].c_str()));
    arguments.push_back(nullptr);
    const PlainSignals signals;
    pid_t child = 0;
    if (const int error =
            ::posix_spawnp(&child, arguments[0], nullptr, signals.Attributes(), arguments.data(), environ))
        throw Failure(words[1], std::generic_category().message(error));
    return child;
}

/// Waits for the end of the program, which a terminal's Ctrl-C reaches as well. A request to end that came to
/// the tool alone is handed on.
int WaitFor(pid_t child, const Interruption &interruption)
{
    int status = 0;
    bool isToldOfEnd = false;
    while (::waitpid(child, &status, WNOHANG) == 0) {
        if (interruption.Requested() && !isToldOfEnd) {
            ::kill(child, SIGTERM);
            isToldOfEnd = true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return status;
}

std::string StatusText(int status)
{
    if (WIFSIGNALED(status))
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    return "ended with " + std::to_string(WEXITSTATUS(status));
}

void Run(const Arguments &arguments, Output &output)
{
    const std::vector<std::string> &words = arguments.Operands();
    if (words.size() < 2)
        throw UsageError("a command to run is missing behind --");
    const Interruption interruption;
    // Who starts the tool may ignore it, and then a child's status is lost.
    std::signal(SIGCHLD, SIG_DFL);
    WatchedFile file(words[0]);
    output.Line("watching " + OneLine(words[0]));
    output.Flush();
    bool isDue = arguments.Has("--now");
    while (!interruption.Requested()) {
        if (isDue || file.HasChanged()) {
            isDue = false;
            // What fails today may be what the next change mends.
            if (const int status = WaitFor(Start(words), interruption); status != 0)
                output.Line(OneLine(words[1]) + " " + StatusText(status));
            output.Flush();
        }
        std::this_thread::sleep_for(kBetweenLooks);
    }
}

} // namespace

const CommandSpec &WatchCommand()
{
    static const CommandSpec command{"watch",
                                     "runs a command whenever a file has changed",
                                     "FILE [--now] -- COMMAND...",
                                     1,
                                     10000,
                                     {{"--now", "", "run it once at the beginning, too"}},
                                     Run,
                                     "watch film.xml -- marlet check film.xml",
                                     "  Whatever writes the file, also one that takes its place, counts when "
                                     "it has been quiet for a moment.\n"
                                     "  Changes during a run lead to one more run. Ctrl-C ends the watch.\n"};
    return command;
}

} // namespace marlet::tool
