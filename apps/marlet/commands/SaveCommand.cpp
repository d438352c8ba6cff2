#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/TextFile.h"

namespace marlet::tool
{

namespace
{

void Run(const Arguments &arguments, Output &)
{
    const std::string &file = arguments.Operand(0);
    const std::string &out = arguments.Operand(1);
    if (!arguments.Has("--without-plugins"))
        return WriteProject(*ReadProject(file), out);
    if (IsSameFile(file, out))
        throw Failure(out, "Without plug-ins every effect gets lost: it is not saved over the file that it "
                           "was read from");
    WriteProject(*ReadProject(file, PluginUse::Without), out);
}

} // namespace

const CommandSpec &SaveCommand()
{
    static const CommandSpec command{
        "save",
        "load a project and save it",
        "[--without-plugins] FILE OUT",
        2,
        2,
        {{"--without-plugins", "", "leave out every effect; OUT is another file than FILE"}},
        Run,
        "save old.xml new.xml"};
    return command;
}

} // namespace marlet::tool
