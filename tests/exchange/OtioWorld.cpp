#include "OtioWorld.h"

#include <plugins/PluginManager.h>
#include <plugins/Plugins.h>
#include <plugins/Ribbon.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/operations/sequence/Timeline.h>
#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/ProjectFile.h>

#include <sstream>

namespace marlet::test
{

namespace
{

void DrawTransition(std::ostream &out, char sign, const std::shared_ptr<Transition> &transition)
{
    if (transition)
        out << sign << -transition->RelativeStartFrame() << '+'
            << transition->Length() + transition->RelativeStartFrame();
}

} // namespace

OtioWorld::OtioWorld()
{
    options.load.report = &report;
    options.load.keepUnknown = true;
    options.folder = u"/film/";
    options.plugins = tool::Plugins();
    static const tool::EffectFactory effects;
    options.effects = &effects;
    options.dissolve = tool::Plugins()->FindPlugin(tool::kCrossDissolveID);
}

std::shared_ptr<Project> OtioWorld::Read(const std::string &text)
{
    report.Clear();
    return ExchangeFormat::ByName("otio")->Read(text, options);
}

std::string OtioWorld::Write(const std::shared_ptr<Project> &project)
{
    report.Clear();
    return ExchangeFormat::ByName("otio")->Write(project, options);
}

std::shared_ptr<Project> OtioWorld::Load(const std::string &file)
{
    LoadOptions load = options.load;
    load.report = nullptr;
    return ProjectFile::Read(ProjectFile::ReadText(file), "/film/film.xml", options.plugins, *options.effects,
                             load);
}

std::vector<std::string> OtioWorld::Told() const
{
    std::vector<std::string> told;
    for (const LoadEntry &entry : report.Entries())
        told.push_back(std::string(SeverityName(entry.severity)) + (entry.isKept ? " kept: " : ": ") +
                       entry.what);
    return told;
}

std::string BytesOf(const std::string &file)
{
    return ReadWholeFile(file);
}

std::string Drawing(const Project &project)
{
    std::ostringstream out;
    for (const auto &track : TracksOf(*project.Sequence())) {
        out << ToUtf8(track->Name()) << ':';
        for (const auto &object : ObjectsOf(*track)) {
            out << ' ' << object->StartFrame() << '-' << object->EndFrame() << ' ' << ToUtf8(object->Name())
                << '@' << object->AssetInstanceStart();
            if (object->Speed() != 1)
                out << 'x' << object->Speed();
            DrawTransition(out, '<', object->IncomingTransition());
            DrawTransition(out, '>', object->OutgoingTransition());
        }
        out << '\n';
    }
    return out.str();
}

Json ClipJson(const std::string &name, double from, double frames, double rate)
{
    const auto time = [&](double value) {
        return Json{{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate}, {"value", value}};
    };
    return {{"OTIO_SCHEMA", "Clip.1"},
            {"name", name},
            {"source_range",
             {{"OTIO_SCHEMA", "TimeRange.1"}, {"start_time", time(from)}, {"duration", time(frames)}}},
            {"media_reference", {{"OTIO_SCHEMA", "ExternalReference.1"}, {"target_url", name + ".mov"}}}};
}

Json TimelineJson(const std::vector<std::vector<Json>> &tracks)
{
    Json children = Json::array();
    for (const auto &items : tracks)
        children.push_back({{"OTIO_SCHEMA", "Track.1"},
                            {"name", "V" + std::to_string(children.size() + 1)},
                            {"kind", "Video"},
                            {"children", items}});
    return {{"OTIO_SCHEMA", "Timeline.1"},
            {"name", "T"},
            {"tracks", {{"OTIO_SCHEMA", "Stack.1"}, {"children", std::move(children)}}}};
}

} // namespace marlet::test
