#include <bench/support/Report.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>

namespace bench
{

namespace
{

/// A figure to reach: what was measured, alone or beside something else.
struct Figure {
    enum class Kind { Ratio, Difference, Count, Milliseconds, MillisecondsMore, Microseconds };
    enum class Bound { AtMost, AtLeast };

    const char *text;
    Kind kind;
    const char *measured;
    const char *beside;
    Bound bound;
    double target;
};

using Kind = Figure::Kind;
using Bound = Figure::Bound;

constexpr Figure kFigures[] = {
    {"load 1 MB / pugixml parse and walk", Kind::Ratio, "Load/1", "ParseAndWalk/1", Bound::AtMost, 3},
    {"load 10 MB / pugixml parse and walk", Kind::Ratio, "Load/10", "ParseAndWalk/10", Bound::AtMost, 1.25},
    {"load 100 MB / pugixml parse and walk", Kind::Ratio, "Load/100", "ParseAndWalk/100", Bound::AtMost,
     1.25},
    {"QDomDocument::setContent 1 MB / load", Kind::Ratio, "SetContent/1", "Load/1", Bound::AtLeast, 10},
    {"QDomDocument::setContent 10 MB / load", Kind::Ratio, "SetContent/10", "Load/10", Bound::AtLeast, 10},
    {"load 100 MB / load 10 MB", Kind::Ratio, "Load/100", "Load/10", Bound::AtMost, 11},
    {"peak of a load of 1 MB, heap bytes per byte", Kind::Count, "PeakOfLoad/1:heap", nullptr, Bound::AtMost,
     8},
    {"peak of a load of 10 MB, heap bytes per byte", Kind::Count, "PeakOfLoad/10:heap", nullptr,
     Bound::AtMost, 8},
    {"peak of a load of 100 MB, heap bytes per byte", Kind::Count, "PeakOfLoad/100:heap", nullptr,
     Bound::AtMost, 8},
    {"peak of a load of 100 MB, resident bytes per byte", Kind::Count, "PeakOfLoad/100:resident", nullptr,
     Bound::AtMost, 8},
    {"compare two projects of 100 MB / load one", Kind::Ratio, "Compare/100", "Load/100", Bound::AtMost, 4},
    {"peak of that / what the two hold", Kind::Count, "Compare/100:heap", nullptr, Bound::AtMost, 1.5},
    {"QDomDocument::toString 1 MB / save", Kind::Ratio, "ToString/1", "Save/1", Bound::AtLeast, 8},
    {"QDomDocument::toString 10 MB / save", Kind::Ratio, "ToString/10", "Save/10", Bound::AtLeast, 8},
    {"validate 100 MB / load it", Kind::Ratio, "Validate/100", "Load/100", Bound::AtMost, 0.25},
    {"value by ID / bare program, times in order", Kind::Ratio, "InOrder/ByID/1000", "InOrder/Bare/1000",
     Bound::AtMost, 1.5},
    {"value by ID / bare program, random times", Kind::Ratio, "AtRandom/ByID/1000", "AtRandom/Bare/1000",
     Bound::AtMost, 2.5},
    {"value by ID, allocations", Kind::Count, "ValueAllocations:allocations", nullptr, Bound::AtMost, 0},
    {"value by name - by ID, ns", Kind::Difference, "InOrder/ByName/1000", "InOrder/ByID/1000", Bound::AtMost,
     30},
    {"value of 100,000 keys / of 1,000, random times", Kind::Ratio, "AtRandom/ByID/100000",
     "AtRandom/ByID/1000", Bound::AtMost, 5},
    {"add 100,000 key frames at random / in order", Kind::Ratio, "AddAtRandom", "AddInOrder", Bound::AtMost,
     15},
    {"move one of 20,000 key frames anywhere, us", Kind::Microseconds, "MoveKeyFrame", nullptr, Bound::AtMost,
     5},
    {"world matrix three parents deep, allocations", Kind::Count, "WorldThreeParentsDeep:allocations",
     nullptr, Bound::AtMost, 0},
    {"throughput of two threads / of one", Kind::Ratio, "WorldOfScene/1", "WorldOfScene/2", Bound::AtLeast,
     1.8},
    {"first matrices of 40,000 layers / second", Kind::Ratio, "FirstMatrices/40000", "SecondMatrices/40000",
     Bound::AtMost, 5},
    {"load a text of 1,000,000 characters / of 100,000", Kind::Ratio, "LoadText/1000000", "LoadText/100000",
     Bound::AtMost, 13},
    {"clone a text of 1,000,000 characters / of 100,000", Kind::Ratio, "CloneText/1000000",
     "CloneText/100000", Bound::AtMost, 13},
    {"save a text of 1,000,000 characters / of 100,000", Kind::Ratio, "SaveText/1000000", "SaveText/100000",
     Bound::AtMost, 13},
    {"drop a text of 1,000,000 characters / of 100,000", Kind::Ratio, "DropText/1000000", "DropText/100000",
     Bound::AtMost, 13},
    {"open 300 short clips / bare open on one thread", Kind::Ratio, "OpenShortClips", "OpenShortClipsBare",
     Bound::AtMost, 0.8},
    {"open them with a warm index folder / bare open", Kind::Ratio, "OpenShortClipsKept",
     "OpenShortClipsBare", Bound::AtMost, 0.1},
    {"resident afterwards, MB a clip", Kind::Count, "OpenedShortClips:per_clip", nullptr, Bound::AtMost, 0.3},
    {"threads afterwards", Kind::Count, "OpenedShortClips:threads", nullptr, Bound::AtMost, 0},
    {"open a 1080p clip / bare open and all packets", Kind::Ratio, "OpenHd", "OpenHdBare", Bound::AtMost,
     1.3},
    {"open an hour of video - bare open, ms", Kind::MillisecondsMore, "OpenHour", "OpenHourBare",
     Bound::AtMost, 50},
    {"open 10,000 clips / 1,000", Kind::Ratio, "OpenManyClips/10000", "OpenManyClips/1000", Bound::AtMost,
     11},
    {"resident after opening 10,000 clips, MB", Kind::Count, "OpenManyClips/10000:megabytes", nullptr,
     Bound::AtMost, 500},
    {"read a 1080p clip forwards / bare decoder and scaler", Kind::Ratio, "ReadForwards/256",
     "ReadForwardsBare", Bound::AtMost, 1.1},
    {"backwards, with room for a group / forwards", Kind::Ratio, "ReadBackwards/900", "ReadForwards/256",
     Bound::AtMost, 2},
    {"backwards, with room for a third / forwards", Kind::Ratio, "ReadBackwards/256", "ReadForwards/256",
     Bound::AtMost, 2.5},
    {"the same frame again / memcpy", Kind::Ratio, "ReadSameFrame", "CopyFrame", Bound::AtMost, 1.5},
    {"in other channels / bare conversion", Kind::Ratio, "ReadSameFrameOtherChannels",
     "ConvertToBothChannels", Bound::AtMost, 1.2},
    {"in another size / bare conversion", Kind::Ratio, "ReadSameFrameOtherSize", "ConvertToBothSizes",
     Bound::AtMost, 1.2},
    {"random frames of a cached group / bare conversion", Kind::Ratio, "ReadRandomInGroup", "ConvertRandom",
     Bound::AtMost, 1.2},
    {"sound from anywhere in an hour / bare seek and decoder", Kind::Ratio, "ReadSound", "ReadSoundBare",
     Bound::AtMost, 3},
    {"resident beyond the budget, 20 clips at random, MB", Kind::Count, "ReadAtRandom:beyond", nullptr,
     Bound::AtMost, 32},
    {"track a 1080p clip backwards / forwards", Kind::Ratio, "TrackBackwards", "TrackForwards", Bound::AtMost,
     2},
    {"clone 1,000 layers with five effects / 100", Kind::Ratio, "CloneEffects/1000", "CloneEffects/100",
     Bound::AtMost, 13},
    {"load a track of 100,000 objects / parse and walk", Kind::Ratio, "LoadTrack/100000", "ParseTrack/100000",
     Bound::AtMost, 4},
    {"load a track of 100,000 objects / of 10,000", Kind::Ratio, "LoadTrack/100000", "LoadTrack/10000",
     Bound::AtMost, 12},
    {"insert 100,000 objects in order / 10,000", Kind::Ratio, "InsertInOrder/100000", "InsertInOrder/10000",
     Bound::AtMost, 12},
    {"insert 100,000 objects at random / bare vector", Kind::Ratio, "InsertAtRandom/100000",
     "InsertIntoVector/100000", Bound::AtMost, 1.5},
    {"object on a frame / bare search", Kind::Ratio, "FindOnFrame", "SearchFrame", Bound::AtMost, 3},
    {"object by start frame / bare search", Kind::Ratio, "GetByStartFrame", "SearchStart", Bound::AtMost, 3},
    {"object by ID / bare hash lookup", Kind::Ratio, "GetByID", "LookUpID", Bound::AtMost, 2},
    {"next edit over 20 tracks / 20 bare searches", Kind::Ratio, "NextEdit", "SearchTracks", Bound::AtMost,
     3},
    {"commit and undo of a value, 1 MB, us", Kind::Microseconds, "CommitAndUndo/1", nullptr, Bound::AtMost,
     5},
    {"commit and undo of a value, 100 MB / 1 MB", Kind::Ratio, "CommitAndUndo/100", "CommitAndUndo/1",
     Bound::AtMost, 1.5},
    {"undo and redo 10,000 edits / make them", Kind::Ratio, "UndoAndRedoManyEdits", "MakeManyEdits",
     Bound::AtMost, 2},
    {"insert with ripple before 100,000 objects, ms", Kind::Milliseconds, "InsertWithRipple", nullptr,
     Bound::AtMost, 10},
    {"match by optical flow, ms", Kind::Milliseconds, "MatchByFlow", nullptr, Bound::AtMost, 10},
    {"match by template, ms", Kind::Milliseconds, "MatchByTemplate", nullptr, Bound::AtMost, 10},
    {"match by template in colour, ms", Kind::Milliseconds, "MatchByTemplateInColour", nullptr, Bound::AtMost,
     10},
};

std::string TimeText(double nanoseconds)
{
    constexpr const char *kUnits[] = {"ns", "us", "ms", "s"};
    std::size_t unit = 0;
    for (; nanoseconds >= 1000 && unit + 1 < std::size(kUnits); ++unit)
        nanoseconds /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%.3g %s", nanoseconds, kUnits[unit]);
    return text;
}

/// The name of a run without what only says how it was run.
std::string PlainName(const benchmark::BenchmarkReporter::Run &run)
{
    std::string name = run.run_name.function_name;
    if (!run.run_name.args.empty())
        name += "/" + run.run_name.args;
    return name;
}

} // namespace

void Report::ReportRuns(const std::vector<Run> &runs)
{
    for (const Run &run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        const std::string name = PlainName(run);
        if (run.error_occurred) {
            std::fprintf(stderr, "%s failed: %s\n", name.c_str(), run.error_message.c_str());
            anyError_ = true;
            continue;
        }
        const double nanoseconds =
            run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
        std::fprintf(stderr, "%-32s %s\n", name.c_str(), TimeText(nanoseconds).c_str());
        const auto [place, isNew] = measured_.try_emplace(name, nanoseconds);
        if (!isNew)
            place->second = std::min(place->second, nanoseconds);
        for (const auto &[counter, value] : run.counters)
            measured_[name + ":" + counter] = value;
    }
}

void Report::PrintTable() const
{
    const auto find = [this](const char *name) -> std::optional<double> {
        const auto place = name ? measured_.find(name) : measured_.end();
        return place == measured_.end() ? std::nullopt : std::optional(place->second);
    };

    std::printf("\n| figure | measured | to reach | | from |\n| --- | --- | --- | --- | --- |\n");
    for (const Figure &figure : kFigures) {
        const auto first = find(figure.measured);
        const auto second = find(figure.beside);
        if (!first || (figure.beside && !second))
            continue;
        double value = *first;
        std::string source;
        if (figure.kind == Kind::Milliseconds) {
            value /= 1e6;
        } else if (figure.kind == Kind::Microseconds) {
            value /= 1e3;
        } else if (figure.kind != Kind::Count) {
            value = figure.kind == Kind::Ratio ? *first / *second : *first - *second;
            source = TimeText(*first) + ", " + TimeText(*second);
            if (figure.kind == Kind::MillisecondsMore)
                value /= 1e6;
        }
        const bool isAtMost = figure.bound == Bound::AtMost;
        const bool isReached = isAtMost ? value <= figure.target : value >= figure.target;
        std::printf("| %-50s | %8.2f | %s %-4g | %-7s | %s |\n", figure.text, value,
                    isAtMost ? "<=" : ">=", figure.target, isReached ? "reached" : "missed", source.c_str());
    }
}

} // namespace bench
