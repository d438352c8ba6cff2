#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "pictures/TreePicture.h"

#include <marlet/project/Project.h>

namespace marlet::tool
{

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const std::string &path = arguments.NewPath("-o");
    WriteFile(path, TreePicture(*ReadProject(arguments.Operand(0))));
    output.Line("wrote the tree to " + OneLine(path));
}

} // namespace

const CommandSpec &TreeCommand()
{
    static const CommandSpec command{"tree",
                                     "a picture of who owns and who refers to whom",
                                     "FILE -o OUT.svg",
                                     1,
                                     1,
                                     {{"-o", "OUT.svg", "the picture"}},
                                     Run,
                                     "tree examples/titles.xml -o tree.svg"};
    return command;
}

} // namespace marlet::tool
