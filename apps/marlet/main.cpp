#include "options/Arguments.h"
#include "options/Command.h"
#include "options/Usage.h"
#include "output/Colors.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/foundation/Exceptions.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
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
    const std::string line = Colored("marlet:", Color::Red, Stream::Error) + " " +
                             (subject.empty() ? "" : OneLine(subject) + ": ") + Joined(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int ReportWrongArguments(const CommandSpec *command, std::string_view message)
{
    Report(command ? command->name : "", message);
    const std::string usage = command ? CommandUsage(*command) : GeneralUsage();
    std::fwrite(usage.data(), 1, usage.size(), stderr);
    return kWrongArguments;
}

/// What is asked for: the usage of everything, that of one command, a text about the tool, or a command
/// itself.
struct Request {
    bool asksForHelp = false;
    std::string command; ///< empty if none is named
    std::function<std::string()> text = nullptr;
};

Request ParseRequest(const std::vector<std::string> &words)
{
    if (words.empty())
        return {};
    if (words[0] == "--version")
        return {true, "", VersionLine};
    if (words[0] == "help") {
        const std::string topic = words.size() > 1 ? words[1] : "";
        if (topic == "--man")
            return {true, "", ManPage};
        if (topic == "--completion")
            return {true, "", [shell = words.size() > 2 ? words[2] : ""] { return Completion(shell); }};
        return {true, topic};
    }
    const auto isHelp = [](const std::string &word) { return word == "--help" || word == "-h"; };
    if (isHelp(words[0]))
        return {true, ""};
    const auto end = std::find(words.begin(), words.end(), "--");
    return {std::any_of(words.begin(), end, isHelp), words[0]};
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
    } catch (const project::FileException &failure) {
        Report(failure.Path(), failure.Reason());
    } catch (const std::bad_alloc &) {
        Report(subject, "Not enough memory");
    } catch (const std::exception &exception) {
        Report(subject, exception.what());
    }
    return kFailure;
}

int Show(const std::string &text)
{
    return Guarded({}, [&] {
        Output output;
        output.Write(text);
        output.Flush();
    });
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

/// Takes the choice of colours, which any command has, out of the words before "--". @throws UsageError
void TakeColors(std::vector<std::string> &words)
{
    const std::string option = "--color=";
    const auto end = std::find(words.begin(), words.end(), "--");
    const auto isChoice = [&](const std::string &word) { return word.rfind(option, 0) == 0; };
    for (auto word = words.begin(); word != end; ++word)
        if (isChoice(*word) && !UseColors(word->substr(option.size())))
            throw UsageError("--color: \"" + word->substr(option.size()) + "\" is not auto, always or never");
    words.erase(std::remove_if(words.begin(), end, isChoice), end);
}

int Main(std::vector<std::string> words)
{
    // A closed pipe and a file that may not grow are failures like any other, told of by their error numbers.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    std::string text;
    Request request;
    try {
        TakeColors(words);
        request = ParseRequest(words);
        if (request.text)
            text = request.text();
    } catch (const UsageError &error) {
        return ReportWrongArguments(nullptr, error.what());
    }
    const CommandSpec *command = FindCommand(request.command);
    if (!command && !request.command.empty())
        return ReportWrongArguments(nullptr, "there is no command \"" + request.command + "\"");
    if (request.text)
        return Show(text);
    if (request.asksForHelp)
        return Show(command ? CommandUsage(*command) : GeneralUsage());
    if (!command)
        return ReportWrongArguments(nullptr, "a command is missing");
    return RunCommand(*command, {words.begin() + 1, words.end()});
}

} // namespace

} // namespace marlet::tool

int main(int argc, char **argv)
{
    return marlet::tool::Main({argv + (argc > 0 ? 1 : 0), argv + argc});
}
