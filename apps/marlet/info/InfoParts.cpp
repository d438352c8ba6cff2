#include "InfoParts.h"

#include "options/TypedValue.h"
#include "output/Output.h"

#include <marlet/animation/PropertyManager.h>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string PropertyText(const PropertyManager &properties, const NarrowString &name)
{
    const KeyFrameList &keyFrames = properties.KeyFrames(name.c_str());
    const PropertyValue &value = properties.StaticValue(name.c_str());
    std::string text = PadRight(name, 20) + " " + PadRight(TypeName(value), 14);
    if (keyFrames.IsEmpty())
        text += ValueText(value);
    else
        text += Counted(keyFrames.Count(), "key frame") + ", " +
                std::to_string(keyFrames.FirstByTime().Time()) + " to " +
                std::to_string(keyFrames.LastByTime().Time()) + " ms";
    if (properties.IsSpatial(name.c_str()))
        text += ", spatial";
    if (properties.HasExpression(name.c_str()))
        text += ", expression " + OneLine(properties.Expression(name.c_str()));
    return text;
}

} // namespace

void WritePropertiesText(const PropertyManager &properties, const std::string &indent, Output &output)
{
    std::size_t untouched = 0;
    for (const NarrowString &name : properties.PropertyNames()) {
        if (properties.KeyFrames(name.c_str()).IsEmpty() && properties.IsDefault(name.c_str()) &&
            !properties.HasExpression(name.c_str()))
            ++untouched;
        else
            output.Line(indent + PropertyText(properties, name));
    }
    if (untouched > 0)
        output.Line(indent + std::to_string(untouched) + " at their defaults");
}

JsonWriter BeginJson(const char *kind)
{
    JsonWriter json;
    json.BeginObject().Member("kind", kind);
    return json;
}

void EndJson(JsonWriter &json, Output &output)
{
    output.Line(json.EndObject().Text());
}

void WritePropertiesJson(const char *ownerKey, const kytl::KyID &owner, const PropertyManager &properties,
                         Output &output)
{
    for (const NarrowString &name : properties.PropertyNames()) {
        const KeyFrameList &keyFrames = properties.KeyFrames(name.c_str());
        const PropertyValue &value = properties.StaticValue(name.c_str());
        JsonWriter json = BeginJson("property");
        json.Member(ownerKey, owner)
            .Member("name", name)
            .Member("type", TypeName(value))
            .Member("animatable", properties.CanAnimate(name.c_str()))
            .Member("spatial", properties.IsSpatial(name.c_str()))
            .Member("default", properties.IsDefault(name.c_str()))
            .Member("key_frames", keyFrames.Count());
        if (!keyFrames.IsEmpty())
            json.Member("first_time", keyFrames.FirstByTime().Time())
                .Member("last_time", keyFrames.LastByTime().Time());
        WriteValue(json.Key("static"), value);
        if (properties.HasExpression(name.c_str()))
            json.Member("expression", properties.Expression(name.c_str()));
        EndJson(json, output);
    }
}

} // namespace marlet::tool
