#include "document/Document.h"
#include "document/Timeline.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

using Matrix = AbstractLayer::Matrix;

struct MatrixKind {
    const char *name;
    Matrix (*compute)(const AbstractLayer &, int time, const ProjectPointer &, bool avoidZeroScale);
};

const MatrixKind kKinds[] = {
    {"world", [](const AbstractLayer &l, int t, const ProjectPointer &p,
                 bool avoid) { return l.WorldTransformationAtTime(t, p, avoid); }},
    {"parenting", [](const AbstractLayer &l, int t, const ProjectPointer &p,
                     bool avoid) { return l.ParentingWorldTransformationAtTime(t, p, avoid); }},
    {"transformation", [](const AbstractLayer &l, int t, const ProjectPointer &p,
                          bool avoid) { return l.TransformationAtTime(t, p, avoid); }},
    {"origin",
     [](const AbstractLayer &l, int t, const ProjectPointer &p, bool) { return l.OriginAtTime(t, p); }},
    {"parent", [](const AbstractLayer &l, int t, const ProjectPointer &p,
                  bool avoid) { return l.ParentTransformationAtTime(t, p, avoid); }},
    {"set-parent", [](const AbstractLayer &l, int t, const ProjectPointer &p,
                      bool avoid) { return l.WorldTransformationAtTimeToSetParent(t, p, avoid); }},
};

const MatrixKind &ChosenKind(const Arguments &arguments)
{
    const std::string name = arguments.Has("--kind") ? arguments.Text("--kind") : "world";
    const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const MatrixKind &candidate) { return candidate.name == name; });
    if (kind == std::end(kKinds))
        throw UsageError("--kind: there is no kind \"" + name + "\"");
    return *kind;
}

std::string SixDigits(float number)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, 6);
    return std::string(buffer, result.ptr);
}

std::string MatrixText(const std::string &title, const Matrix &matrix)
{
    std::string text = title + "\n";
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            text += PadLeft(SixDigits(matrix(row, column)), 14);
        text += '\n';
    }
    return text;
}

/// Closes the object that is open.
std::string MatrixJson(JsonWriter &json, const Matrix &matrix)
{
    json.Key("matrix").BeginArray();
    std::for_each(matrix.Data(), matrix.Data() + 16, [&](float element) { json.Value(element); });
    return json.EndArray().EndObject().Text() + '\n';
}

void RunForLayer(const Arguments &arguments, Output &output)
{
    const bool byFrame = arguments.Has("--frames");
    if (!byFrame && !arguments.Has("--times"))
        throw UsageError("one of --frames, --times and --object is needed");
    if (byFrame == arguments.Has("--times"))
        throw UsageError("either --frames or --times is needed, not both");
    const std::vector<IntegerRange> ranges = arguments.Ranges(byFrame ? "--frames" : "--times");
    const MatrixKind &kind = ChosenKind(arguments);
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const LayerPointer layer = FindLayer(*FindComposition(*project, compositionName), layerName);
    const AssetList &assets = std::as_const(*project).Assets();
    for (const IntegerRange &range : ranges) {
        for (long long at = range.first; at <= range.last; ++at) {
            const int asked = static_cast<int>(at);
            const int time = byFrame ? layer->GlobalFrameToRelativeTime(asked, assets) : asked;
            const int frame = byFrame ? asked : layer->RelativeTimeToGlobalFrame(asked, assets);
            const Matrix matrix = kind.compute(*layer, time, project, arguments.Has("--avoid-zero-scale"));
            if (arguments.Has("--json")) {
                JsonWriter json;
                json.BeginObject().Member("frame", frame).Member("time", time);
                output.Write(MatrixJson(json, matrix));
            } else {
                output.Write(MatrixText(
                    "frame " + std::to_string(frame) + ", " + std::to_string(time) + " ms", matrix));
            }
        }
    }
}

struct ObjectMatrixKind {
    const char *name;
    Matrix (VisualObject::*compute)(const ProjectPointer &) const;
};

const ObjectMatrixKind kObjectKinds[] = {
    {"transformation", &VisualObject::Transformation},
    {"origin", &VisualObject::OriginTransformation},
    {"world", &VisualObject::WorldTransformation},
};

/// An object does not move: there are no frames to ask for.
void RunForObject(const Arguments &arguments, Output &output)
{
    for (const char *option : {"--composition", "--layer", "--frames", "--times", "--avoid-zero-scale"})
        if (arguments.Has(option))
            throw UsageError(std::string(option) + " does not go with --object");
    const std::string wanted = arguments.Has("--kind") ? arguments.Text("--kind") : "";
    if (!wanted.empty() && std::none_of(std::begin(kObjectKinds), std::end(kObjectKinds),
                                        [&](const ObjectMatrixKind &kind) { return kind.name == wanted; }))
        throw UsageError("--kind: an object has no kind \"" + wanted + "\"");

    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const auto object = FindVisualObject(*SequenceOf(*project), arguments.Text("--object"));
    for (const ObjectMatrixKind &kind : kObjectKinds) {
        if (!wanted.empty() && kind.name != wanted)
            continue;
        const Matrix matrix = ((*object).*kind.compute)(project);
        if (arguments.Has("--json")) {
            JsonWriter json;
            json.BeginObject().Member("kind", kind.name);
            output.Write(MatrixJson(json, matrix));
        } else {
            output.Write(MatrixText(kind.name, matrix));
        }
    }
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--object"))
        RunForObject(arguments, output);
    else
        RunForLayer(arguments, output);
}

} // namespace

const CommandSpec &MatrixCommand()
{
    static const CommandSpec command{
        "matrix",
        "the matrices of a layer over time, or of an object of the sequence",
        "FILE --composition C --layer L (--frames LIST | --times LIST) [--kind KIND]\n"
        "[--avoid-zero-scale] [--json]\n"
        "FILE --object O [--kind KIND] [--json]",
        1,
        1,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"},
         {"--frames", "LIST", "frames of the composition: 0,5,7 or 0..100"},
         {"--times", "LIST", "milliseconds since the layer's start: -40,0,33"},
         {"--object", "O", "a picture of the sequence, by ID, NAME, TRACK/NAME or TRACK@FRAME"},
         {"--kind", "KIND",
          "world (if not given), parenting, transformation, origin, parent or set-parent; of an object\n"
          "                      transformation, origin and world, which are all shown if it is not given"},
         {"--avoid-zero-scale", "", "take a very small scale for one of zero"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "matrix examples/orbit.xml --composition Orbit --layer Moon --frames 0,12,24"};
    return command;
}

} // namespace marlet::tool
