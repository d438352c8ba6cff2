#include "Usage.h"

#include "Output.h"

#include <algorithm>

namespace marlet::tool
{

namespace
{

const std::vector<const CommandSpec *> &Commands()
{
    static const std::vector<const CommandSpec *> commands{
        &InfoCommand(),     &ValueCommand(),  &MatrixCommand(), &ParentCommand(),     &CloneCommand(),
        &DeleteCommand(),   &SaveCommand(),   &ImageCommand(),  &MediaCommand(),      &DecodeCommand(),
        &SamplesCommand(),  &RelinkCommand(), &TrackCommand(),  &PostFilterCommand(), &TimecodeCommand(),
        &CheckCommand(),    &NewCommand(),    &ClipCommand(),   &PluginsCommand(),    &FontsCommand(),
        &TimelineCommand(), &EditCommand(),
    };
    return commands;
}

} // namespace

const CommandSpec *FindCommand(const std::string &name)
{
    const auto found = std::find_if(Commands().begin(), Commands().end(),
                                    [&](const CommandSpec *command) { return command->name == name; });
    return found == Commands().end() ? nullptr : *found;
}

std::string GeneralUsage()
{
    std::string usage = "usage: marlet COMMAND ...\n\n";
    for (const CommandSpec *command : Commands())
        usage += "  " + PadRight(command->name, 10) + command->summary + "\n";
    return usage + "\n\"marlet help COMMAND\" tells how a command is called.\n";
}

std::string CommandUsage(const CommandSpec &command)
{
    std::string usage = "usage: marlet " + command.name + " ";
    const std::string indent(usage.size(), ' ');
    for (const char c : command.synopsis) {
        usage += c;
        if (c == '\n')
            usage += indent;
    }
    usage += "\n\n  " + command.summary + "\n";
    if (!command.options.empty())
        usage += '\n';
    for (const OptionSpec &option : command.options)
        usage += "  " + PadRight(option.name + " " + option.placeholder, 20) + option.help + "\n";
    if (!command.notes.empty())
        usage += "\n" + command.notes;
    return usage;
}

} // namespace marlet::tool
