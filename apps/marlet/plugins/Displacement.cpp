#include "Displacement.h"

#include "Plugins.h"

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

enum Channel { kRed, kGreen, kBlue, kAlpha, kLuminance };
enum Edges { kTransparent, kRepeat, kWrap };

PluginPanel Panel()
{
    const std::vector<PluginPanel::MenuItem> channels{
        {u"Red", kRed}, {u"Green", kGreen}, {u"Blue", kBlue}, {u"Alpha", kAlpha}, {u"Luminance", kLuminance}};
    PluginPanel panel;
    panel.Group(u"Map")
        .Layer("map", u"Map Layer")
        .Menu("horizontalChannel", u"Horizontal By", kRed, channels)
        .Menu("verticalChannel", u"Vertical By", kGreen, channels)
        .Group(u"Amount")
        .Float("horizontal", u"Horizontal", 20, {-2000, 2000, 1, u"px"})
        .Float("vertical", u"Vertical", 20, {-2000, 2000, 1, u"px"})
        .Menu("edges", u"Edges", kTransparent,
              {{u"Transparent", kTransparent}, {u"Repeat", kRepeat}, {u"Wrap Round", kWrap}});
    return panel;
}

Displacement::Response Straight()
{
    Displacement::Response response;
    for (std::size_t level = 0; level < response.size(); ++level)
        response[level] = static_cast<unsigned char>(level);
    return response;
}

Displacement::Response &ResponseOf(const AbstractPluginInstance &instance)
{
    return *static_cast<Displacement::Response *>(instance.InstanceData());
}

} // namespace

Displacement::Displacement() : FilterPlugin({kDisplacementID, u"Displacement", {1, 0, 0, 1}}, Panel())
{
}

/// A copy arrives with its source's pointer, which is not its own to keep.
void Displacement::InstanceCreated(Instance *instance)
{
    instance->SetInstanceData(new Response(Straight()));
}

void Displacement::InstanceDestroyed(Instance *instance)
{
    delete &ResponseOf(*instance);
    instance->SetInstanceData(nullptr);
}

std::vector<unsigned char> Displacement::PrivateBytes(const Instance &instance) const
{
    const Response &response = ResponseOf(instance);
    if (response == Straight())
        return {};
    return {response.begin(), response.end()};
}

void Displacement::SerializeInstance(Instance *instance, void *document, void *element)
{
    std::vector<unsigned char> bytes = PrivateBytes(*instance);
    if (!bytes.empty())
        instance->SerializeInstanceDataBytes(bytes.data(), static_cast<int>(bytes.size()), document, element);
}

void Displacement::DeserializeInstance(Instance *instance, unsigned char *bytes, int size)
{
    Response &response = ResponseOf(*instance);
    if (size == static_cast<int>(response.size()))
        std::copy_n(bytes, size, response.begin());
}

void Displacement::SetResponse(Instance &instance, const Response &response) const
{
    ResponseOf(instance) = response;
}

FilterPlugin::Margins Displacement::MarginsAtTime(const PropertyManager &properties, int time) const
{
    if (Static<int>(properties, "edges") != kTransparent)
        return {};
    const int horizontal = Pixels(std::abs(FloatAtTime(properties, "horizontal", time)));
    const int vertical = Pixels(std::abs(FloatAtTime(properties, "vertical", time)));
    return {horizontal, horizontal, vertical, vertical};
}

std::shared_ptr<AbstractPlugin> MakeDisplacement()
{
    return std::make_shared<Displacement>();
}

} // namespace marlet::tool
