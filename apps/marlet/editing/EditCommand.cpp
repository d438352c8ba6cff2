#include "EditOperations.h"
#include "EditScript.h"
#include "NoticeText.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/history/EditHistory.h>

namespace marlet::tool
{

using namespace project;

namespace
{

/// One operation, and where it is written, if that is a line of a script.
struct Step {
    Arguments arguments;
    const EditOperation *operation;
    std::string place;
};

/// Runs something of a script so that what fails in it is told with its line.
template <class Work> auto AtLine(const std::string &place, const Work &work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &exception) {
        throw Failure(place, exception.what());
    }
}

std::vector<Step> ReadScript(const Arguments &arguments)
{
    if (arguments.Operands().size() > 2)
        throw UsageError("\"" + arguments.Operand(2) + "\" is one too many beside --script");
    const std::string &path = arguments.Path("--script");
    std::vector<Step> steps;
    for (const ScriptLine &line : ScriptLines(path)) {
        const std::string place = path + ":" + std::to_string(line.number);
        steps.push_back(AtLine(place, [&] {
            std::vector<std::string> words{arguments.Operand(0), arguments.Operand(1)};
            words.insert(words.end(), line.words.begin(), line.words.end());
            const Arguments ofLine(EditCommand(), words);
            if (ofLine.Has("--dry-run"))
                throw UsageError("--dry-run goes with the whole script");
            return Step{ofLine, &ChosenOperation(ofLine), place};
        }));
    }
    return steps;
}

std::vector<Step> StepsOf(const Arguments &arguments)
{
    if (arguments.Has("--script"))
        return ReadScript(arguments);
    return {{arguments, &ChosenOperation(arguments), ""}};
}

void RunStep(const Step &step, const ProjectPointer &project, Output &output)
{
    const auto run = [&] {
        Editing editing(project, step.arguments, output);
        step.operation->run(editing);
        editing.TellOfLosses();
    };
    if (step.place.empty())
        run();
    else
        AtLine(step.place, run);
}

class NoticePrinter : public ChangeObserver
{
public:
    NoticePrinter(const Project &project, Output &output) : project_(project), output_(output) {}

    void Changed(const ChangeNotice &notice) override
    {
        for (const std::string &line : NoticeLines(project_, notice))
            output_.Line(line);
    }

private:
    const Project &project_;
    Output &output_;
};

void Run(const Arguments &arguments, Output &output)
{
    const std::vector<Step> steps = StepsOf(arguments);
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    EditHistory history(project);
    const bool isDryRun = arguments.Has("--dry-run");
    if (isDryRun)
        history.AddObserver(std::make_shared<NoticePrinter>(*project, output));
    for (const Step &step : steps)
        RunStep(step, project, output);
    if (isDryRun)
        return;
    FillInstances(*project);
    WriteProject(*project, arguments.Operand(1));
}

} // namespace

const CommandSpec &EditCommand()
{
    static const CommandSpec command{
        "edit",
        "changes the sequence: inserts, moves, removes, trims, splits and joins objects, sets transitions",
        "FILE OUT insert ASSET --track T --at F [--from F] [--length N] [--sound T] [--overwrite | RIPPLE]\n"
        "FILE OUT copy OBJECT --at F [--track T] [--sound T] [--unlinked] [--overwrite | RIPPLE]\n"
        "FILE OUT move OBJECT [--to F | --by N] [--track T] [--unlinked]\n"
        "FILE OUT remove OBJECT [--unlinked] [RIPPLE]\n"
        "FILE OUT trim OBJECT [--start F] [--end F] [--unlinked] [RIPPLE]\n"
        "FILE OUT roll OBJECT --to F [--side head|tail] [--unlinked]\n"
        "FILE OUT slip OBJECT --by N [--unlinked]\n"
        "FILE OUT slide OBJECT --by N [--unlinked]\n"
        "FILE OUT speed OBJECT --factor X [--unlinked] [RIPPLE]\n"
        "FILE OUT split OBJECT --at F [--unlinked]\n"
        "FILE OUT join OBJECT [--unlinked]\n"
        "FILE OUT link OBJECT --with OBJECT\n"
        "FILE OUT unlink OBJECT\n"
        "FILE OUT lift --start F --end F [--tracks T,T]\n"
        "FILE OUT extract --start F --end F [--tracks T,T]\n"
        "FILE OUT close-gaps [--tracks T,T]\n"
        "FILE OUT transition OBJECT [--side head|tail] [--plugin P] [--length N] [--one-sided]\n"
        "FILE OUT transition OBJECT [--side head|tail] --remove\n"
        "FILE OUT add-track NAME [--type video|audio]\n"
        "FILE OUT --script FILE",
        2,
        4,
        {{"--track", "T", "the track, by ID or name"},
         {"--sound", "T", "the track of the asset's sound, which becomes a partner of the picture"},
         {"--at", "F", "the frame of the sequence"},
         {"--from", "F", "the first frame of the asset that is used; 0 if not given"},
         {"--length", "N", "in frames; what the asset has, or half a second for a transition, if not given"},
         {"--to", "F", "the new first frame, or that of the cut"},
         {"--by", "N", "how many frames later, or earlier if negative"},
         {"--start", "F", "the new first frame; the picture does not move under it"},
         {"--end", "F", "the new end, a frame behind the last one"},
         {"--factor", "X", "the speed; the object goes on to show the same frames of its asset"},
         {"--with", "OBJECT", "the new partner"},
         {"--unlinked", "", "the partner stays as it is; else it goes along by as many frames"},
         {"--overwrite", "", "in place of what is there"},
         {"--ripple", "", "what comes behind moves, as RIPPLE stands for: --ripple [--tracks T,T]"},
         {"--tracks", "T,T", "these tracks; all if not given"},
         {"--side", "S", "which end of the object; tail if not given"},
         {"--plugin", "P", "the transition, by ID or name; Cross Dissolve if not given"},
         {"--one-sided", "", "at the end of this object alone, even if another one meets it there"},
         {"--remove", "", "takes the transition away, on both sides if it is shared"},
         {"--type", "T", "video or audio; video if not given"},
         {"--script", "FILE", "operations, one a line, without FILE and OUT; names with blanks in \"...\""},
         {"--dry-run", "", "tells what of which objects would change, and writes nothing"}},
        Run,
        "edit examples/cut.xml shorter.xml trim \"Sea\" --end 145",
        "An object is given by ID, NAME, TRACK/NAME or TRACK@FRAME. A name that only a picture and\n"
        "its sound have is that of the picture. Nothing is written if an object would cover another\n"
        "one, or frames that the sequence or the asset does not have. A shared transition goes when\n"
        "one of its objects leaves the cut, and any transition when its object gets too short for it;\n"
        "each such loss is told of. The tail of a split keeps the transition behind it, and the tails\n"
        "of two partners become partners.\n"};
    return command;
}

} // namespace marlet::tool
