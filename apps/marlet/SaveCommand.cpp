#include "Arguments.h"
#include "Document.h"

namespace marlet::tool
{

namespace
{

void Run(const Arguments &arguments, Output &)
{
    WriteProject(*ReadProject(arguments.Operand(0)), arguments.Operand(1));
}

} // namespace

const CommandSpec &SaveCommand()
{
    static const CommandSpec command{"save", "load a project and save it", "FILE OUT", 2, 2, {}, Run};
    return command;
}

} // namespace marlet::tool
