#include "InfoParts.h"
#include "document/LayerContent.h"
#include "output/Names.h"
#include "output/Output.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/EffectInstance.h>

namespace marlet::tool
{

using namespace project;

void WriteEffectText(const EffectInstance &effect, Output &output)
{
    const std::string deeper = std::string(kLayerIndent) + "  ";
    const std::shared_ptr<AbstractPlugin> plugin = effect.Plugin();
    std::string text = "effect " + Quoted(effect.Name()) + "  " + OneLine(ToUtf8(plugin->Name())) + " " +
                       VersionText(plugin->Version()) + ", " + (effect.Enabled() ? "on" : "off");
    if (const std::size_t bytes = PrivateByteCount(effect); bytes > 0)
        text += ", " + Counted(bytes, "byte") + " of its own";
    output.Line(kLayerIndent + text);
    WritePropertiesText(effect.Properties(), deeper, output);
    std::string hidden;
    for (const std::string &control : HiddenControls(effect))
        hidden += (hidden.empty() ? "hidden in its panel: " : ", ") + control;
    if (!hidden.empty())
        output.Line(deeper + hidden);
}

void WriteEffectJson(const char *ownerKey, const kytl::KyID &owner, const EffectInstance &effect,
                     Output &output)
{
    const std::shared_ptr<AbstractPlugin> plugin = effect.Plugin();
    JsonWriter json = BeginJson("effect");
    json.Member(ownerKey, owner)
        .Member("id", effect.ID())
        .Member("name", effect.Name())
        .Member("plugin", effect.PluginID())
        .Member("plugin_name", plugin->Name())
        .Member("plugin_version", VersionText(plugin->Version()))
        .Member("enabled", effect.Enabled())
        .Member("private_bytes", PrivateByteCount(effect));
    json.Key("hidden").BeginArray();
    for (const std::string &control : HiddenControls(effect))
        json.Value(control);
    json.EndArray();
    EndJson(json, output);
    WritePropertiesJson("effect", effect.ID(), effect.Properties(), output);
}

} // namespace marlet::tool
