#pragma once

#include <string>
#include <vector>

namespace marlet::tool
{

class Arguments;
class Output;

struct OptionSpec {
    std::string name;        ///< with its dashes
    std::string placeholder; ///< of its value; empty for a switch
    std::string help;
};

/// A command of the tool: how it is called and what it does.
struct CommandSpec {
    std::string name;
    std::string summary;
    std::string synopsis; ///< what follows the name
    std::size_t leastOperands;
    std::size_t mostOperands;
    std::vector<OptionSpec> options;
    void (*run)(const Arguments &, Output &);
    std::string example = {}; ///< a call that makes sense, without the tool's own name
    std::string notes = {};   ///< lines for the end of the usage
};

const CommandSpec &FrameCommand();
const CommandSpec &ReportCommand();
const CommandSpec &TreeCommand();
const CommandSpec &DiffCommand();
const CommandSpec &MergeCommand();
const CommandSpec &CurveCommand();
const CommandSpec &InfoCommand();
const CommandSpec &ValueCommand();
const CommandSpec &MatrixCommand();
const CommandSpec &ParentCommand();
const CommandSpec &SaveCommand();
const CommandSpec &ImageCommand();
const CommandSpec &TimecodeCommand();
const CommandSpec &CheckCommand();
const CommandSpec &NewCommand();
const CommandSpec &CloneCommand();
const CommandSpec &DeleteCommand();
const CommandSpec &PluginsCommand();
const CommandSpec &MediaCommand();
const CommandSpec &DecodeCommand();
const CommandSpec &SamplesCommand();
const CommandSpec &RelinkCommand();
const CommandSpec &RecoverCommand();
const CommandSpec &TrackCommand();
const CommandSpec &PostFilterCommand();
const CommandSpec &ClipCommand();
const CommandSpec &FontsCommand();
const CommandSpec &TimelineCommand();
const CommandSpec &EditCommand();
const CommandSpec &WatchCommand();
const CommandSpec &ServeCommand();
const CommandSpec &ConvertCommand();

} // namespace marlet::tool
