#include "document/CheckRows.h"
#include "document/Document.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
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

void Conclude(const LoadReport &report, bool isSame, bool isJson, Output &output)
{
    const std::size_t gone = report.Count(LoadEntry::Severity::Loss);
    const std::size_t mended = report.Count(LoadEntry::Severity::Warning);
    const bool isWhole = report.Count() == 0;
    if (isJson)
        output.Line(JsonWriter()
                        .BeginObject()
                        .Member("kind", "sums")
                        .Member("losses", gone)
                        .Member("mended", mended)
                        .Member("isSame", isSame)
                        .EndObject()
                        .Text());
    else if (isWhole)
        output.Line(isSame ? "Nothing is damaged; the copy is the same"
                           : "Nothing is damaged; the copy is the same text in UTF-8");
    if (!isWhole)
        throw Failure(Counted(gone, "place") + " where something is gone, " + Counted(mended, "place") +
                      " where something was mended");
}

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
    const bool isJson = arguments.Has("--json");
    for (const LoadEntry &entry : report.Entries()) {
        const CheckRow row{entry.severity, PlaceOf(entry), "recover", entry.path, entry.what, entry.ids};
        output.Line(isJson ? RowJson(row)
                           : PlaceLine(file, row.place, row.severity, WhatAndWhere(row.what, row.object)));
    }
    WriteFile(out, recovered);
    Conclude(report, recovered == bytes, isJson, output);
}

} // namespace

const CommandSpec &RecoverCommand()
{
    static const CommandSpec command{"recover",
                                     "what can be had of a project whose text is cut off or damaged",
                                     "FILE OUT [--json]",
                                     2,
                                     2,
                                     {{"--json", "", "one JSON object a line"}},
                                     Run,
                                     "recover damaged.xml recovered.xml",
                                     "  What is gone and what was mended is listed as FILE:LINE:COLUMN: "
                                     "loss: ..., with the lines of FILE.\n"
                                     "  Exit status: 0 if nothing is damaged, 1 if something is gone or was "
                                     "mended, or if there is no OUT.\n"};
    return command;
}

} // namespace marlet::tool
