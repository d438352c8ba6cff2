#include "EditScript.h"
#include "Editing.h"
#include "NoticeText.h"
#include "Standings.h"
#include "Verb.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/history/EditHistory.h>

#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

/// One operation, and where it is written, if that is a line of a script.
struct Step {
    Arguments arguments;
    const Verb *verb;
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
        const std::string place = ScriptPlace(path, line.number);
        steps.push_back(AtLine(place, [&] {
            std::vector<std::string> words{arguments.Operand(0), arguments.Operand(1)};
            words.insert(words.end(), line.words.begin(), line.words.end());
            const Arguments ofLine(EditCommand(), words);
            for (const char *option : {"--dry-run", "--json", "--script"})
                if (ofLine.Has(option))
                    throw UsageError(std::string(option) + " goes with the whole script");
            return Step{ofLine, &ChosenVerb(ofLine), place};
        }));
    }
    if (steps.empty())
        throw Failure(path == "-" ? "standard input" : path, "The script has nothing to do in it");
    return steps;
}

std::vector<Step> StepsOf(const Arguments &arguments)
{
    if (arguments.Has("--script"))
        return ReadScript(arguments);
    return {{arguments, &ChosenVerb(arguments), ""}};
}

using Lines = std::vector<std::string>;

void RunStep(const Step &step, const ProjectPointer &project, Lines &lines)
{
    const auto run = [&] {
        Editing editing(project, step.arguments, *step.verb, lines);
        step.verb->run(editing);
        editing.TellOfLosses();
    };
    if (step.place.empty())
        return run();
    try {
        AtLine(step.place, run);
    } catch (const Failure &failure) {
        throw Failure(failure.Subject(), std::string(failure.what()) + "; nothing of the script is written");
    }
}

class NoticePrinter : public ChangeObserver
{
public:
    NoticePrinter(const Project &project, bool isJson, Lines &lines)
        : project_(project), isJson_(isJson), lines_(lines), before_(project)
    {
    }

    void Changed(const ChangeNotice &notice) override
    {
        Standings after(project_);
        if (isJson_)
            lines_.push_back(NoticeJson(notice, before_, after));
        else
            for (std::string &line : NoticeLines(notice, before_, after))
                lines_.push_back(std::move(line));
        before_ = std::move(after);
    }

private:
    const Project &project_;
    bool isJson_;
    Lines &lines_;
    Standings before_;
};

/// What a dry run would change, step by step.
void RunDry(const std::vector<Step> &steps, const ProjectPointer &project, bool isJson, Output &output)
{
    Lines lines;
    EditHistory history(project);
    history.AddObserver(std::make_shared<NoticePrinter>(*project, isJson, lines));
    const auto print = [&] {
        for (const std::string &line : std::exchange(lines, {}))
            output.Line(line);
    };
    for (const Step &step : steps) {
        Lines told;
        RunStep(step, project, told);
        if (!isJson)
            lines.insert(lines.end(), told.begin(), told.end());
        print();
    }
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--json") && !arguments.Has("--dry-run"))
        throw UsageError("--json goes with --dry-run");
    const std::vector<Step> steps = StepsOf(arguments);
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    if (arguments.Has("--dry-run"))
        return RunDry(steps, project, arguments.Has("--json"), output);
    // Told once it is true: a step that fails leaves nothing of those before it.
    Lines lines;
    const EditHistory history(project);
    for (const Step &step : steps)
        RunStep(step, project, lines);
    FillInstances(*project);
    WriteProject(*project, arguments.Operand(1));
    for (const std::string &line : lines)
        output.Line(line);
}

} // namespace

const CommandSpec &EditCommand()
{
    static const CommandSpec command{
        "edit",
        "changes a project: its sequence, assets, layers, key frames, texts and masks, in steps",
        VerbsSynopsis() + "FILE OUT --script FILE",
        2,
        7,
        {{"--track", "T", "the track, by ID or name"},
         {"--sound", "T", "the track of the asset's sound, which becomes a partner of the picture"},
         {"--at", "F", "the frame of the sequence or composition"},
         {"--from", "F", "the first frame of the asset that is used; 0 if not given"},
         {"--length", "N", "in frames; what the asset has, or half a second for a transition, if not given"},
         {"--to", "F", "the new first frame, or that of the cut"},
         {"--by", "N", "how many frames later, or earlier if negative"},
         {"--start", "F", "the new first frame; the picture does not move under it"},
         {"--end", "F", "the new end, a frame behind the last one"},
         {"--factor", "X", "the speed; the object goes on to show the same frames of its asset"},
         {"--with", "OBJECT", "the new partner, the asset or the layer that comes in"},
         {"--unlinked", "", "the partner stays as it is; else it goes along by as many frames"},
         {"--overwrite", "", "in place of what is there"},
         {"--ripple", "", "what comes behind moves, as RIPPLE stands for: --ripple [--tracks T,T]"},
         {"--tracks", "T,T", "these tracks; all if not given"},
         {"--side", "S", "which end of the object; tail if not given"},
         {"--plugin", "P", "the transition, by ID or name; Cross Dissolve if not given"},
         {"--one-sided", "", "at the end of this object alone, even if another one meets it there"},
         {"--remove", "", "takes the transition away, on both sides if it is shared"},
         {"--type", "T", "video or audio, video if not given; of a layer text, point or grade"},
         {"--place", "N", "in the stack of layers, counted from 1 at the top; the top if not given"},
         {"--on", "LAYER", "the parent, by ID or name; the layer stays where it is at the frame of --at"},
         {"--into", "COMPOSITION", "the composition that the copy comes into; its own if not given"},
         {"--layers", "L,L", "the layers, by IDs or names"},
         {"--folder", "D", "the folder, by ID or name; the root if not given"},
         {"--uses", "", "with all that shows the asset, which is refused without it"},
         {"--size", "WxH", "in pixels; that of the composition for a layer, if not given"},
         {"--colour", "RRGGBB", "in hexadecimal digits"},
         {"--middle", "X,Y", "in pixels from the middle of the picture, Y up; the middle if not given"},
         {"--radius", "N", "of the corners, in pixels"},
         {"--effect", "E", "the property is that of this effect of the layer, by ID or name"},
         {"--mask", "M", "the property is that of this mask of the layer, by ID or name"},
         {"--time", "MS", "in milliseconds from the start of the layer"},
         {"--times", "MS..MS", "the key frames at these times; all if not given"},
         {"--easing", "E", "linear, ease-in, ease-out, ease-in-out or hold"},
         {"--tolerance", "X", "how far a curve may be from where it was, in the units of its property"},
         {"--value", "V", "as `value` prints it: 50, yes, 0,120,0"},
         {"--family", "F", "of the font; see marlet fonts"},
         {"--face", "F", "of the family, such as Bold"},
         {"--height", "N", "of the font, in pixels"},
         {"--align", "A", "left, centre or right, of the paragraphs that end in the text"},
         {"--rate", "R", "in frames per second"},
         {"--rotation", "", "turns with the two points of the tracker"},
         {"--scale", "", "grows with the distance of the two points"},
         {"--script", "FILE",
          "operations, one a line, without FILE and OUT, names with blanks in \"...\"; - is\n"
          "                      standard input. All of them are done, or nothing is written"},
         {"--dry-run", "", "tells what of which objects would change, and writes nothing"},
         {"--json", "", "with --dry-run: one JSON object for each step, with IDs"}},
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
