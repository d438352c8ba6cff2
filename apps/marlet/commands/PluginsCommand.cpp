#include "info/InfoParts.h"
#include "options/Arguments.h"
#include "options/TypedValue.h"
#include "output/Names.h"
#include "output/Output.h"
#include "plugins/PluginManager.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/PluginTreePluginNode.h>
#include <marlet/plugins/PluginUIAngle.h>
#include <marlet/plugins/PluginUIColorWheels.h>
#include <marlet/plugins/PluginUIComboBox.h>
#include <marlet/plugins/PluginUIHistogram.h>
#include <marlet/plugins/PluginUISliderFloat.h>
#include <marlet/plugins/PluginUISliderInt.h>

namespace marlet::tool
{

using namespace project;

namespace
{

using UINode = AbstractPluginUITreeNode;

std::string KindName(const AbstractPlugin &plugin)
{
    return plugin.Kind() == AbstractPlugin::kFilter2D ? "filter" : "transition";
}

std::vector<NarrowString> Names(const PluginUIHistogram::PropertyNames &names)
{
    return {names.inputBlack, names.inputWhite, names.gamma, names.outputBlack, names.outputWhite};
}

/// The properties of the controls that edit many.
std::vector<NarrowString> FurtherProperties(const UINode &node)
{
    std::vector<NarrowString> all;
    if (const auto *wheels = dynamic_cast<const PluginUIColorWheels *>(&node)) {
        const PluginUIColorWheels::PropertyNames &names = wheels->Names();
        all = {names.shadowsHue,    names.shadowsSaturation,    names.shadowsLightness,
               names.midtonesHue,   names.midtonesSaturation,   names.midtonesLightness,
               names.highlightsHue, names.highlightsSaturation, names.highlightsLightness};
    } else if (const auto *histogram = dynamic_cast<const PluginUIHistogram *>(&node)) {
        for (const auto *names : {&histogram->RGBPropertyNames(), &histogram->RedPropertyNames(),
                                  &histogram->GreenPropertyNames(), &histogram->BluePropertyNames(),
                                  &histogram->AlphaPropertyNames()})
            for (const NarrowString &name : Names(*names))
                all.push_back(name);
    }
    return all;
}

/// What the kind of a control adds to its property.
std::string ControlDetails(const UINode &node)
{
    std::string text;
    if (const auto *slider = dynamic_cast<const PluginUISliderInt *>(&node)) {
        int minimum = 0;
        int maximum = 0;
        slider->MinMaxRange(minimum, maximum);
        text = ", " + std::to_string(minimum) + " to " + std::to_string(maximum) + " " +
               ToUtf8(slider->Suffix());
    } else if (const auto *floatSlider = dynamic_cast<const PluginUISliderFloat *>(&node)) {
        float minimum = 0;
        float maximum = 0;
        floatSlider->MinMaxRange(minimum, maximum);
        text = ", " + NumberText(minimum) + " to " + NumberText(maximum) + " " +
               ToUtf8(floatSlider->Suffix()) + ", " +
               Counted(static_cast<std::size_t>(floatSlider->DecimalPlaces()), "decimal place");
    } else if (const auto *menu = dynamic_cast<const PluginUIComboBox *>(&node)) {
        for (const PluginUIComboBox::MenuItem &item : menu->MenuItems())
            text += ", " + std::to_string(item.value) + " " + Quoted(item.text);
    } else if (const auto *angle = dynamic_cast<const PluginUIAngle *>(&node)) {
        text = angle->AllowTurns() ? ", with turns" : "";
    } else if (const auto further = FurtherProperties(node); !further.empty()) {
        text = ", properties";
        for (const NarrowString &name : further)
            text += " " + name;
    }
    return text;
}

void WritePanelText(const UINode &parent, const PropertyManager &properties, std::size_t depth,
                    Output &output)
{
    for (const auto &node : parent.ChildNodes()) {
        const NarrowString property = node->PropertyManagerName();
        std::string text =
            std::string(2 * depth, ' ') + Quoted(node->Name()) + "  " + ControlTypeName(node->Type());
        if (!property.empty())
            text += ", property " + property + ", " + ValueText(properties.DefaultValue(property.c_str()));
        text += ControlDetails(*node);
        if (node->Options() & UINode::kHidden)
            text += ", hidden at first";
        output.Line(text);
        WritePanelText(*node, properties, depth + 1, output);
    }
}

void WriteTreeText(const AbstractPluginTreeNode &node, std::size_t depth, Output &output)
{
    const std::string indent(2 * depth, ' ');
    const auto *pluginNode = dynamic_cast<const PluginTreePluginNode *>(&node);
    if (!pluginNode) {
        output.Line(indent + Quoted(node.Name()) + "  category");
    } else {
        const std::shared_ptr<AbstractPlugin> plugin = pluginNode->Plugin();
        output.Line(indent + Quoted(node.Name()) + "  " + KindName(*plugin) + ", version " +
                    VersionText(plugin->Version()) + ", " + plugin->ID().ToNarrowString());
        WritePanelText(*plugin->UITree(), plugin->Properties(), depth + 1, output);
    }
    for (const auto &child : node.ChildNodes())
        WriteTreeText(*child, depth + 1, output);
}

void WriteDetails(JsonWriter &json, const UINode &node)
{
    if (const auto *slider = dynamic_cast<const PluginUISliderInt *>(&node)) {
        int minimum = 0;
        int maximum = 0;
        slider->MinMaxRange(minimum, maximum);
        json.Member("minimum", minimum).Member("maximum", maximum).Member("suffix", slider->Suffix());
    } else if (const auto *floatSlider = dynamic_cast<const PluginUISliderFloat *>(&node)) {
        float minimum = 0;
        float maximum = 0;
        floatSlider->MinMaxRange(minimum, maximum);
        json.Member("minimum", minimum)
            .Member("maximum", maximum)
            .Member("suffix", floatSlider->Suffix())
            .Member("decimal_places", floatSlider->DecimalPlaces());
    } else if (const auto *menu = dynamic_cast<const PluginUIComboBox *>(&node)) {
        json.Key("items").BeginArray();
        for (const PluginUIComboBox::MenuItem &item : menu->MenuItems())
            json.BeginObject().Member("text", item.text).Member("value", item.value).EndObject();
        json.EndArray();
    } else if (const auto *angle = dynamic_cast<const PluginUIAngle *>(&node)) {
        json.Member("turns", angle->AllowTurns());
    } else if (const auto further = FurtherProperties(node); !further.empty()) {
        json.Key("properties").BeginArray();
        for (const NarrowString &name : further)
            json.Value(name);
        json.EndArray();
    }
}

void WritePanelJson(const UINode &parent, const AbstractPlugin &plugin, std::size_t depth, Output &output)
{
    for (const auto &node : parent.ChildNodes()) {
        const NarrowString property = node->PropertyManagerName();
        JsonWriter json = BeginJson("control");
        json.Member("plugin", plugin.ID())
            .Member("depth", depth)
            .Member("type", ControlTypeName(node->Type()))
            .Member("name", node->Name())
            .Member("options", node->Options());
        if (!property.empty())
            WriteValue(json.Member("property", property).Key("default"),
                       plugin.Properties().DefaultValue(property.c_str()));
        WriteDetails(json, *node);
        EndJson(json, output);
        WritePanelJson(*node, plugin, depth + 1, output);
    }
}

void WriteTreeJson(AbstractPluginTreeNode &node, std::size_t depth, Output &output)
{
    const auto *pluginNode = dynamic_cast<const PluginTreePluginNode *>(&node);
    JsonWriter json = BeginJson(pluginNode ? "plugin" : "category");
    json.Member("depth", depth).Member("name", node.Name());
    if (pluginNode) {
        const std::shared_ptr<AbstractPlugin> plugin = pluginNode->Plugin();
        json.Member("type", KindName(*plugin))
            .Member("id", plugin->ID())
            .Member("version", VersionText(plugin->Version()));
        EndJson(json, output);
        WritePanelJson(*plugin->UITree(), *plugin, 0, output);
    } else {
        EndJson(json, output);
    }
    for (const auto &child : node.ChildNodes())
        WriteTreeJson(*child, depth + 1, output);
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--json"))
        WriteTreeJson(*Plugins()->Tree(), 0, output);
    else
        WriteTreeText(*Plugins()->Tree(), 0, output);
}

} // namespace

const CommandSpec &PluginsCommand()
{
    static const CommandSpec command{
        "plugins", "the tool's plug-ins and their panels",     "[--json]", 0,
        0,         {{"--json", "", "one JSON object a line"}}, Run,        "plugins --json"};
    return command;
}

} // namespace marlet::tool
