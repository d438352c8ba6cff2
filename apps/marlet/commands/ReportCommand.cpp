#include "document/Document.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "pictures/Report.h"

#include <cstdio>
#include <filesystem>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The folder that a report is written to, file by file. Ctrl-C ends that between two of them.
class ReportFolder
{
public:
    explicit ReportFolder(const std::string &path) : path_(path)
    {
        std::error_code error;
        if (!std::filesystem::create_directories(path, error) && error)
            throw Failure(path, error.message());
    }

    /// Names beginning alike are numbered. Returns the file's name.
    std::string Add(const std::string &stem, const std::string &ending, const std::string &bytes)
    {
        if (interruption_.Requested())
            throw Failure(path_, "Interrupted");
        char number[16];
        std::snprintf(number, sizeof number, "-%03d", ++count_);
        const std::string name = stem + number + ending;
        WriteFile(PathOf(name), bytes);
        return name;
    }

    std::string PathOf(const std::string &name) const
    {
        return (std::filesystem::path(path_) / name).string();
    }

private:
    std::string path_;
    const Interruption interruption_;
    int count_ = 0;
};

void Run(const Arguments &arguments, Output &output)
{
    const std::string &path = arguments.Path("-o");
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    ReportFolder folder(path);
    const std::string html =
        MakeReport(project, [&](const std::string &stem, const std::string &ending,
                                const std::string &bytes) { return folder.Add(stem, ending, bytes); });
    // Last, so that a page is there only with all its pictures.
    const std::string page = folder.PathOf("index.html");
    WriteFile(page, html);
    output.Line("wrote the report " + OneLine(page));
}

} // namespace

const CommandSpec &ReportCommand()
{
    static const CommandSpec command{"report",
                                     "a project on one HTML page",
                                     "FILE -o OUT_DIR",
                                     1,
                                     1,
                                     {{"-o", "OUT_DIR", "the folder for the page and its pictures"}},
                                     Run,
                                     "report examples/titles.xml -o report"};
    return command;
}

} // namespace marlet::tool
