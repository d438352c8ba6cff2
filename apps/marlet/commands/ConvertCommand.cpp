#include "document/Document.h"
#include "document/MediaOpening.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "output/Warning.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"
#include "plugins/Ribbon.h"

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cstdio>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr char kProject[] = "project";
constexpr std::size_t kMostRecognised = 4096;

/// What of a file is in question: a project of the tool's own, or a format.
using Form = const ExchangeFormat *;
constexpr Form kProjectForm = nullptr;

/// Other formats may hold the text of a project, or be in UTF-16, too.
bool IsProject(std::string_view bytes)
{
    constexpr std::string_view kRoot = "<Project";
    const std::size_t start = bytes.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    if (start == std::string_view::npos || bytes[start] != '<')
        return bytes.starts_with("\xFF\xFE<") || bytes.starts_with(std::string_view("\xFE\xFF\0<", 4));
    const std::size_t root = bytes.find(kRoot);
    return root < bytes.size() && bytes.find_first_of(" \t\r\n>/", root) == root + kRoot.size();
}

Form NamedForm(const std::string &name)
{
    if (name == kProject)
        return kProjectForm;
    const Form format = ExchangeFormat::ByName(name);
    if (!format)
        throw Failure("There is no format \"" + name + "\": marlet convert --formats lists them");
    return format;
}

Form FormOfInput(const Arguments &arguments, const std::string &path, std::string_view bytes)
{
    if (arguments.Has("--from"))
        return NamedForm(arguments.Text("--from"));
    const std::string_view beginning = bytes.substr(0, kMostRecognised);
    if (IsProject(beginning))
        return kProjectForm;
    const Form format = ExchangeFormat::ForReading(path, beginning);
    if (!format)
        throw Failure(path, "Neither its content nor its ending tells the format: --from names it");
    return format;
}

Form FormOfOutput(const Arguments &arguments, const std::string &path)
{
    if (arguments.Has("--to"))
        return NamedForm(arguments.Text("--to"));
    if (const Form format = ExchangeFormat::ForWriting(path))
        return format;
    if (!path.ends_with(".xml"))
        throw Failure(path, "Its ending tells no format: --to names it");
    return kProjectForm;
}

std::string EntryJson(const std::string &file, const LoadEntry &entry)
{
    JsonWriter json;
    json.BeginObject()
        .Member("file", file)
        .Member("severity", SeverityName(entry.severity))
        .Member("what", entry.what)
        .Member("isKept", entry.isKept);
    if (!entry.path.empty())
        json.Member("path", entry.path);
    if (entry.line > 0)
        json.Member("line", entry.line).Member("column", entry.column);
    return json.EndObject().Text();
}

class Conversion
{
public:
    Conversion(const Arguments &arguments, Output &output)
        : arguments_(arguments), output_(output), in_(arguments.Operand(0)), out_(arguments.Operand(1))
    {
        options_.load = {
            .media = NewMediaManager(), .progress = &opening_, .report = &report_, .keepUnknown = true};
        options_.plugins = Plugins();
        options_.effects = &effects_;
        options_.dissolve = Plugins()->FindPlugin(kCrossDissolveID);
        options_.wipe = Plugins()->FindPlugin(kWipeID);
        const auto text = [&](const char *option) {
            return arguments.Has(option) ? arguments.Text(option) : std::string();
        };
        options_.composition = FromUtf8(text("--composition"));
        options_.layer = FromUtf8(text("--layer"));
        options_.property = text("--property");
        options_.frameRate = arguments.Has("--fps") ? RateOption(arguments, "--fps") : 0;
    }

    void Run()
    {
        if (IsSameFile(in_, out_))
            throw Failure(out_, "It is not written over the file that it is made of");
        RequireWritable(out_);
        const Form to = FormOfOutput(arguments_, out_);
        const std::string bytes = ReadWholeFile(in_);
        const ProjectPointer project = Read(FormOfInput(arguments_, in_, bytes), bytes);
        if (to == kProjectForm)
            return WriteProject(*project, out_);
        if (!to->CanWrite())
            throw Failure(out_, std::string(to->Title()) + " can be read only");
        options_.folder = ProjectFile::FolderOf(out_);
        std::string text;
        Try([&] { text = to->Write(project, options_); }, out_);
        WriteFile(out_, text);
    }

private:
    ProjectPointer Read(Form from, std::string_view bytes)
    {
        const bool goesInto = arguments_.Has("--into");
        if (from == kProjectForm && goesInto)
            throw UsageError("--into takes something else than a project");
        if (from == kProjectForm)
            return ReadProject(in_);
        if (!goesInto && !from->CanRead())
            throw Failure(in_, from->CanReadInto()
                                   ? std::string(from->Title()) + " goes into a project: --into names it"
                                   : std::string(from->Title()) + " can be written only");
        if (goesInto && !from->CanReadInto())
            throw Failure(in_, std::string(from->Title()) + " goes into no project");
        ProjectPointer project = goesInto ? ReadProject(arguments_.Path("--into")) : nullptr;
        options_.folder = ProjectFile::FolderOf(in_);
        Try(
            [&] {
                if (goesInto)
                    from->ReadInto(project, bytes, options_);
                else
                    project = from->Read(bytes, options_);
            },
            in_);
        opening_.RequireNotInterrupted();
        FillInstances(*project);
        return project;
    }

    /// Tells what was left out of a file, also before a failure.
    template <class Work> void Try(const Work &work, const std::string &file)
    {
        try {
            work();
        } catch (const ExchangeException &error) {
            Tell(file);
            throw Failure(in_, error.what());
        } catch (const OperationException &error) {
            Tell(file);
            throw Failure(in_, error.what());
        }
        Tell(file);
    }

    /// What was left out, as compilers tell of it, or as data.
    void Tell(const std::string &file)
    {
        for (LoadEntry entry : report_.Entries()) {
            // Some formats know lines alone.
            entry.column = std::max(entry.column, entry.line > 0 ? 1 : 0);
            if (arguments_.Has("--json")) {
                output_.Line(EntryJson(file, entry));
                continue;
            }
            const std::string what =
                WhatAndWhere(entry.what, entry.path) + (entry.isKept ? ", which is kept" : "");
            const std::string line = PlaceLine(file, PlaceOf(entry), entry.severity, what) + "\n";
            std::fwrite(line.data(), 1, line.size(), stderr);
        }
        report_.Clear();
    }

    const Arguments &arguments_;
    Output &output_;
    const std::string &in_;
    const std::string &out_;
    const EffectFactory effects_;
    MediaOpening opening_;
    LoadReport report_;
    ExchangeOptions options_;
};

void ListFormats(const Arguments &arguments, Output &output)
{
    for (const Form format : ExchangeFormat::All()) {
        std::string endings;
        for (const std::string_view ending : format->Endings())
            endings += (endings.empty() ? "" : " ") + std::string(ending);
        if (arguments.Has("--json"))
            output.Line(JsonWriter()
                            .BeginObject()
                            .Member("name", format->Name())
                            .Member("title", format->Title())
                            .Member("endings", endings)
                            .Member("holds", format->Holds())
                            .Member("canRead", format->CanRead())
                            .Member("canReadInto", format->CanReadInto())
                            .Member("canWrite", format->CanWrite())
                            .EndObject()
                            .Text());
        else
            output.Line(PadRight(std::string(format->Name()), 10) + PadRight(endings, 14) +
                        PadRight(std::string(format->CanRead() || format->CanReadInto() ? "in" : "") +
                                     (format->CanWrite() ? " out" : ""),
                                 8) +
                        std::string(format->Title()) + ": " + std::string(format->Holds()));
    }
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--formats") != arguments.Operands().empty())
        throw UsageError("either IN and OUT or --formats is needed");
    if (arguments.Has("--formats"))
        return ListFormats(arguments, output);
    if (arguments.Operands().size() != 2)
        throw UsageError("OUT is missing");
    Conversion(arguments, output).Run();
}

} // namespace

const CommandSpec &ConvertCommand()
{
    static const CommandSpec command{
        "convert",
        "take what other programs give, and give what they take",
        "IN OUT [--from FORMAT] [--to FORMAT] [--into PROJECT] [--composition NAME] [--layer NAME]\n"
        "       [--property NAME] [--fps RATE] [--json]\n"
        "--formats [--json]",
        0,
        2,
        {{"--formats", "", "list the formats, with the endings of their files"},
         {"--from", "FORMAT", "what IN is in, in place of what its content and its ending tell"},
         {"--to", "FORMAT", "what OUT is to be in, in place of what its ending tells"},
         {"--into", "PROJECT", "what IN holds comes into this project, which OUT is then"},
         {"--composition", "NAME", "by name or ID; the only one if not given"},
         {"--layer", "NAME", "of the composition"},
         {"--property", "NAME", "of the layer"},
         {"--fps", "RATE", "frames a second of a text that has none of its own"},
         {"--json", "", "one JSON object a line for each thing that was left out"}},
        Run,
        "convert examples/cut.xml cut.otio",
        "  IN and OUT are projects, named .xml, or files of other programs. What one of the sides has no "
        "word "
        "for is told\n"
        "  on standard error as FILE: loss: ...; the exit code is 0 all the same. What is kept comes back "
        "when the file\n"
        "  is converted back. As FORMAT a project is called \"project\".\n"};
    return command;
}

} // namespace marlet::tool
