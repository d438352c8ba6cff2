#include "Usage.h"

#include "output/Output.h"

#include <algorithm>

namespace marlet::tool
{

const std::vector<const CommandSpec *> &Commands()
{
    static const std::vector<const CommandSpec *> commands{
        &InfoCommand(),  &CheckCommand(),      &ReportCommand(),  &TimelineCommand(), &TreeCommand(),
        &DiffCommand(),  &MergeCommand(),      &ValueCommand(),   &CurveCommand(),    &MatrixCommand(),
        &FrameCommand(), &PostFilterCommand(), &NewCommand(),     &EditCommand(),     &ConvertCommand(),
        &SaveCommand(),  &ParentCommand(),     &CloneCommand(),   &DeleteCommand(),   &RecoverCommand(),
        &MediaCommand(), &DecodeCommand(),     &SamplesCommand(), &RelinkCommand(),   &TrackCommand(),
        &ImageCommand(), &TimecodeCommand(),   &PluginsCommand(), &FontsCommand(),    &ClipCommand(),
        &WatchCommand(), &ServeCommand(),
    };
    return commands;
}

std::string VersionLine()
{
    return "marlet " MARLET_VERSION "\n";
}

const CommandSpec *FindCommand(const std::string &name)
{
    const auto found = std::find_if(Commands().begin(), Commands().end(),
                                    [&](const CommandSpec *command) { return command->name == name; });
    return found == Commands().end() ? nullptr : *found;
}

std::string GeneralUsage()
{
    std::string usage = "usage: marlet COMMAND ...\n\n";
    std::size_t width = 0;
    for (const CommandSpec *command : Commands())
        width = std::max(width, command->name.size() + 2);
    for (const CommandSpec *command : Commands())
        usage += "  " + PadRight(command->name, width) + command->summary + "\n";
    return usage +
           "\n\"marlet help COMMAND\" tells how a command is called, \"marlet --version\" which "
           "marlet this is.\n"
           "\"--color=always\" and \"--color=never\" say whether what is told has colours; without, it "
           "has on a terminal\nwhere NO_COLOR is not set.\n";
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
    if (!command.example.empty())
        usage += "\nexample:\n  marlet " + command.example + "\n";
    return usage;
}

} // namespace marlet::tool
