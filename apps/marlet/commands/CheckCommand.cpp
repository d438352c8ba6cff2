#include "document/CheckRows.h"
#include "document/Document.h"
#include "document/ProjectCheck.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/QuietStandardError.h"
#include "output/Warning.h"

#include <marlet/checks/Validate.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>

#include <algorithm>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

/// Where two texts part, as a person finds it in an editor.
std::size_t FirstDifferentLine(const WideString &a, const WideString &b)
{
    const auto end = a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    const auto different = std::mismatch(a.begin(), end, b.begin()).first;
    return 1 + static_cast<std::size_t>(std::count(a.begin(), different, u'\n'));
}

/// Tells what is done to a file, or would be.
class Checker
{
public:
    Checker(const Arguments &arguments, Output &output)
        : path_(arguments.Operand(0)),
          json_(arguments.Has("--json")),
          output_(output),
          document_(path_, Document::Voice::Silent)
    {
        try {
            project_ = document_.Open();
        } catch (const std::exception &) {
            if (document_.Report().FirstError())
                Show(CheckRows(document_.Text(), document_.Report(), {}));
            throw;
        }
        findings_ =
            std::make_unique<CheckRows>(document_.Text(), document_.Report(), CheckProject(*project_));
    }

    /// Returns the number of problems.
    std::size_t Tell()
    {
        Show(*findings_);
        TellOfPlugins();
        const std::size_t unstable = TellOfSaving();
        TellOfChange();
        if (json_)
            WriteSums(findings_->Problems() + unstable);
        else if (const std::string counts = findings_->CountsText(); !counts.empty())
            output_.Line(counts);
        else if (unstable == 0)
            output_.Line("Loads, saves and loads again as the same; nothing dangles or is missing");
        return findings_->Problems() + unstable;
    }

    /// Returns the number of problems that are left in the project.
    std::size_t RepairInto(const std::string &path, RepairMode mode)
    {
        std::vector<Finding> repaired;
        {
            const QuietStandardError quiet;
            repaired = Repair(*project_, mode);
        }
        for (const Finding &finding : repaired)
            TellOfRepair(finding, mode);
        if (mode == RepairMode::DryRun)
            return findings_->Problems();
        WriteProject(*project_, path);
        const std::vector<Finding> left = CheckProject(*project_);
        const auto problems =
            static_cast<std::size_t>(std::count_if(left.begin(), left.end(), [](const Finding &finding) {
                return finding.severity != Finding::Severity::Note;
            }));
        if (json_)
            output_.Line(JsonWriter()
                             .BeginObject()
                             .Member("kind", "repaired")
                             .Member("path", path)
                             .Member("repairs", repaired.size())
                             .Member("left", problems)
                             .EndObject()
                             .Text());
        else
            output_.Line("wrote " + OneLine(path) + ", " + Counted(repaired.size(), "repair"));
        return problems;
    }

private:
    void Show(const CheckRows &rows)
    {
        for (const CheckRow &row : rows.Rows())
            output_.Line(json_ ? RowJson(row) : RowText(path_, row));
    }

    /// Each once; what is made of them was told of where it stands.
    void TellOfPlugins()
    {
        for (const UnresolvedPlugin &plugin : document_.Report().UnresolvedPlugins())
            if (json_)
                output_.Line(JsonWriter()
                                 .BeginObject()
                                 .Member("kind", "plug-in")
                                 .Member("id", plugin.id)
                                 .Member("name", plugin.name)
                                 .Member("version", plugin.version)
                                 .Member("isOlder", plugin.isOlder)
                                 .Member("uses", plugin.uses)
                                 .EndObject()
                                 .Text());
            else
                output_.Line(OneLine(PluginText(plugin)));
    }

    /// What a load and a save of the project's own text change about it.
    std::size_t TellOfSaving()
    {
        saved_ = ProjectFile::TextFor(*project_, path_);
        const ProjectPointer reread = document_.OpenText(saved_, project_->SharedMedia());
        const WideString again = ProjectFile::TextFor(*reread, path_);
        if (saved_ == again)
            return 0;
        const CheckRow row{LoadEntry::Severity::Warning,
                           {},
                           "unstable",
                           "Project",
                           "line " + std::to_string(FirstDifferentLine(saved_, again)) +
                               " changes when it is saved again",
                           {}};
        output_.Line(json_ ? RowJson(row) : RowText(path_, row));
        return 1;
    }

    /// Tells where a save would change the file. That is no problem in itself, but where a file was edited by
    /// hand it shows what was not taken as it was meant.
    void TellOfChange()
    {
        if (document_.Text() == saved_)
            return;
        const std::size_t line = FirstDifferentLine(document_.Text(), saved_);
        if (json_)
            output_.Line(
                JsonWriter().BeginObject().Member("kind", "change").Member("line", line).EndObject().Text());
        else
            output_.Line("A save changes the file, first in line " + std::to_string(line));
    }

    void WriteSums(std::size_t problems)
    {
        using Severity = LoadEntry::Severity;
        output_.Line(JsonWriter()
                         .BeginObject()
                         .Member("kind", "sums")
                         .Member("problems", problems)
                         .Member("errors", findings_->Count(Severity::Error))
                         .Member("losses", findings_->Count(Severity::Loss))
                         .Member("warnings", findings_->Count(Severity::Warning))
                         .Member("notes", findings_->Count(Severity::Note))
                         .EndObject()
                         .Text());
    }

    void TellOfRepair(const Finding &finding, RepairMode mode)
    {
        const bool isDone = mode == RepairMode::Apply;
        if (json_)
            output_.Line(JsonWriter()
                             .BeginObject()
                             .Member("kind", "repair")
                             .Member("of", FindingKindName(finding.kind))
                             .Member("done", isDone)
                             .Member("place", finding.place)
                             .Member("what", finding.what)
                             .Member("remedy", finding.remedy)
                             .EndObject()
                             .Text());
        else
            output_.Line(OneLine((isDone ? "repaired: " : "would repair: ") + finding.place + ": " +
                                 finding.what + ": " + finding.remedy));
    }

    const std::string &path_;
    bool json_;
    Output &output_;
    Document document_;
    WideString saved_;
    ProjectPointer project_;
    std::unique_ptr<CheckRows> findings_;
};

void Run(const Arguments &arguments, Output &output)
{
    const bool isDry = arguments.Has("--dry-run");
    if (isDry && !arguments.Has("--repair"))
        throw UsageError("--dry-run is for --repair");
    const std::string repaired = arguments.Has("--repair") ? arguments.NewPath("--repair") : "";
    Checker checker(arguments, output);
    std::size_t problems = checker.Tell();
    if (!repaired.empty())
        problems = checker.RepairInto(repaired, isDry ? RepairMode::DryRun : RepairMode::Apply);
    if (problems > 0)
        throw Failure(Counted(problems, "problem"));
}

} // namespace

const CommandSpec &CheckCommand()
{
    static const CommandSpec command{
        "check",
        "what a file loses, what in its project is wrong, and whether that survives saving",
        "FILE [--json] [--repair OUT [--dry-run]]",
        1,
        1,
        {{"--json", "", "one JSON object a line"},
         {"--repair", "OUT", "writes the project there with all repaired that is safe to repair"},
         {"--dry-run", "", "with --repair: only tells what would be repaired"}},
        Run,
        "check project.xml",
        "  Exit status: 0 if nothing but notes is told, 1 if there is an error, a loss or a warning; with "
        "--repair, if\n  one is left in OUT.\n"};
    return command;
}

} // namespace marlet::tool
