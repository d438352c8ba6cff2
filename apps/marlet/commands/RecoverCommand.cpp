#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "output/Warning.h"
#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <marlet/recovery/Recovery.h>

namespace marlet::tool
{

using namespace project;

namespace
{

void Run(const Arguments &arguments, Output &output)
{
    const std::string &file = arguments.Operand(0);
    const std::string &out = arguments.Operand(1);
    if (IsSameFile(file, out))
        throw Failure(out,
                      "What cannot be told today may be told tomorrow: it is not saved over the file that "
                      "it was read from");
    RequireWritable(out);
    const std::string bytes = ReadWholeFile(file);
    LoadReport report;
    const std::string recovered =
        ToUtf8(RecoverProject(bytes, ProjectFile::FolderOf(file), Plugins(), EffectFactory(), report));
    for (const LoadEntry &entry : report.Entries())
        output.Line(PlaceLine(file, PlaceOf(entry), entry.severity, WhatAndWhere(entry.what, entry.path)));
    WriteFile(out, recovered);
    if (report.Count() == 0)
        output.Line(recovered == bytes ? "Nothing is damaged; the copy is the same"
                                       : "Nothing is damaged; the copy is the same text in UTF-8");
    else
        output.Line(Counted(report.Count(LoadEntry::Severity::Loss), "place") + " where something is gone, " +
                    Counted(report.Count(LoadEntry::Severity::Warning), "place") +
                    " where something was mended");
}

} // namespace

const CommandSpec &RecoverCommand()
{
    static const CommandSpec command{"recover",
                                     "what can be had of a project whose text is cut off or damaged",
                                     "FILE OUT",
                                     2,
                                     2,
                                     {},
                                     Run,
                                     "recover damaged.xml recovered.xml",
                                     "  What is gone and what was mended is listed as FILE:LINE:COLUMN: "
                                     "loss: ..., with the lines of FILE.\n"};
    return command;
}

} // namespace marlet::tool
