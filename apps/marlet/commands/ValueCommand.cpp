#include "document/Document.h"
#include "options/Arguments.h"
#include "options/TypedValue.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

bool IsWrongRoot(const std::exception &failure, const std::string &tag)
{
    return failure.what() == "Wrong tag name\n" + tag;
}

/// Null for a text of something else.
std::shared_ptr<PropertyManager> ReadProperties(const WideString &text)
{
    try {
        return PropertyManager::CreateFromXml(text);
    } catch (const XmlParseException &failure) {
        if (IsWrongRoot(failure, "PropertyManager"))
            return nullptr;
        throw;
    }
}

/// The properties that a text holds by itself, or those of a layer of the project that it holds. Whatever
/// owns the properties is kept alive with them.
std::shared_ptr<const PropertyManager> FindProperties(const Arguments &arguments)
{
    Document document(arguments.Operand(0), Document::Voice::Silent);
    ProjectPointer project;
    try {
        project = document.Open();
    } catch (const std::exception &noProject) {
        if (!IsWrongRoot(noProject, "Project")) {
            document.Tell();
            throw;
        }
        const auto properties = ReadProperties(document.Text());
        if (!properties)
            throw;
        if (arguments.Has("--composition") || arguments.Has("--layer"))
            throw UsageError("properties that stand alone have no composition and no layer");
        return properties;
    }
    document.Tell();
    const CompositionPointer composition = FindComposition(*project, arguments.Text("--composition"));
    const LayerPointer layer = FindLayer(*composition, arguments.Text("--layer"));
    return {layer, &layer->Animation()};
}

void Run(const Arguments &arguments, Output &output)
{
    const std::string &name = arguments.Text("--property");
    const std::vector<IntegerRange> times = arguments.Ranges("--times");
    const auto properties = FindProperties(arguments);
    if (!properties->HasProperty(name.c_str()))
        throw NoSuch("property", name, properties->PropertyNames());

    const PropertyManager::PropertyID id = properties->GetPropertyID(name.c_str());
    for (const IntegerRange &range : times) {
        for (long long time = range.first; time <= range.last; ++time) {
            const PropertyValue value = properties->ValueAtTime(id, static_cast<int>(time));
            if (arguments.Has("--json")) {
                JsonWriter json;
                json.BeginObject().Member("time", static_cast<int>(time)).Member("type", TypeName(value));
                WriteValue(json.Key("value"), value);
                output.Line(json.EndObject().Text());
            } else {
                output.Line(PadLeft(std::to_string(time), 8) + " ms  " + PadRight(TypeName(value), 14) +
                            ValueText(value));
            }
        }
    }
}

} // namespace

const CommandSpec &ValueCommand()
{
    static const CommandSpec command{
        "value",
        "the values of a property over time",
        "FILE --property NAME --times LIST [--composition C --layer L] [--json]",
        1,
        1,
        {{"--property", "NAME", "the property, such as position"},
         {"--times", "LIST", "milliseconds since the layer's start: 0,33,100 or 0..100"},
         {"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name; FILE may also hold properties alone"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "value examples/orbit.xml --composition Orbit --layer Moon --property position --times 0..1000"};
    return command;
}

} // namespace marlet::tool
