#include "Arguments.h"
#include "Command.h"
#include "Failure.h"
#include "Output.h"
#include "Usage.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <new>

namespace marlet::tool
{

namespace
{

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongArguments = 2;

/// A message of several lines, on one line.
std::string Joined(std::string_view lines)
{
    std::string joined;
    for (const char c : lines) {
        if (c == '\n')
            joined += ": ";
        else
            joined += c;
    }
    return OneLine(joined);
}

void Report(const std::string &subject, std::string_view message)
{
    const std::string line =
        "marlet: " + (subject.empty() ? "" : OneLine(subject) + ": ") + Joined(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int ReportWrongArguments(const CommandSpec *command, std::string_view message)
{
    Report(command ? command->name : "", message);
    const std::string usage = command ? CommandUsage(*command) : GeneralUsage();
    std::fwrite(usage.data(), 1, usage.size(), stderr);
    return kWrongArguments;
}

/// What a person asks for by "help", "help COMMAND", "--help" and "COMMAND --help"; empty for anything else.
std::string AskedHelp(const std::vector<std::string> &words)
{
    const auto isHelp = [](const std::string &word) {
        return word == "help" || word == "--help" || word == "-h";
    };
    if (words.size() == 1 && isHelp(words[0]))
        return GeneralUsage();
    if (words.size() != 2)
        return {};
    const CommandSpec *command = nullptr;
    if (isHelp(words[0]))
        command = FindCommand(words[1]);
    else if (words[1] == "--help" || words[1] == "-h")
        command = FindCommand(words[0]);
    return command ? CommandUsage(*command) : std::string();
}

/// Runs the work and reports what fails in it. The subject is what a failure without one of its own is about.
template <class Work> int Guarded(const std::string &subject, Work work)
{
    try {
        work();
        return kSuccess;
    } catch (const UsageError &) {
        throw;
    } catch (const Failure &failure) {
        Report(failure.Subject().empty() ? subject : failure.Subject(), failure.what());
    } catch (const std::bad_alloc &) {
        Report(subject, "Not enough memory");
    } catch (const std::exception &exception) {
        Report(subject, exception.what());
    }
    return kFailure;
}

int RunCommand(const CommandSpec &command, const std::vector<std::string> &words)
{
    std::string subject;
    try {
        const Arguments arguments(command, words);
        if (command.leastOperands > 0)
            subject = arguments.Operand(0);
        Output output;
        const int result = Guarded(subject, [&] { command.run(arguments, output); });
        // What was written before a failure comes out all the same.
        return std::max(result, Guarded(subject, [&] { output.Flush(); }));
    } catch (const UsageError &error) {
        return ReportWrongArguments(&command, error.what());
    }
}

int Main(const std::vector<std::string> &words)
{
    // A closed pipe and a file that may not grow are failures like any other, told of by their error numbers.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    if (const std::string help = AskedHelp(words); !help.empty()) {
        return Guarded({}, [&] {
            Output output;
            output.Write(help);
            output.Flush();
        });
    }
    if (words.empty())
        return ReportWrongArguments(nullptr, "a command is missing");
    const CommandSpec *command = FindCommand(words[0]);
    if (!command)
        return ReportWrongArguments(nullptr, "there is no command \"" + words[0] + "\"");
    return RunCommand(*command, {words.begin() + 1, words.end()});
}

} // namespace

} // namespace marlet::tool

int main(int argc, char **argv)
{
    return marlet::tool::Main({argv + (argc > 0 ? 1 : 0), argv + argc});
}
