#pragma once

#include "PluginBase.h"

#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/PluginUICheckBox.h>
#include <marlet/plugins/PluginUISliderFloat.h>

#include <cmath>

namespace embed
{

// An effect that spreads light over the edges of the frame, which grows by its radius.
class Glow : public PluginBase<AbstractPlugin2D>
{
public:
    // It stands in files, so it never changes.
    static constexpr kytl::KyID kID{
        0x6a0d51c2, 0x93b8, 0x4e27, {0xb1, 0x5c, 0x20, 0x8f, 0xd4, 0x7e, 0x39, 0x61}};

    Glow() : PluginBase(kID, u"Glow", {1, 0, 0, 0})
    {
        properties_->CreateProperty("radius", 10.f, PropertyManager::Type::Animatable, nullptr);
        properties_->CreateProperty("clipped", false, PropertyManager::Type::NotAnimatable, nullptr);
        const auto group = PluginUINode::CreatePropertyGroup(panel_, u"Light");
        panel_->ChildNodes().Add(group);
        group->ChildNodes().Add(
            std::make_shared<PluginUISliderFloat>(group, u"Radius", u"px", "radius", 0, 0.f, 500.f, 1));
        group->ChildNodes().Add(
            std::make_shared<PluginUICheckBox>(group, u"Keep the Frame's Size", "clipped", 0));
    }

    int Kind() const override { return kFilter2D; }

    void FilterMargins(EffectInstance *effect, FilterSurface *, int, int, float scale, float, bool, int time,
                       int *left, int *right, int *top, int *bottom) override
    {
        const PropertyManager &properties = std::as_const(*effect).Properties();
        const bool clipped = boost::get<bool>(properties.StaticValue("clipped"));
        const float radius = boost::get<float>(properties.ValueAtTime("radius", time));
        *left = *right = *top = *bottom = clipped ? 0 : static_cast<int>(std::ceil(radius * scale));
    }

    // The panel hides the radius while it counts for nothing.
    void PropertyChanged(Instance *instance, const char *name) override
    {
        if (NarrowString(name) == "clipped")
            instance->SetPropertyUIState("radius",
                                         {!boost::get<bool>(instance->Properties().StaticValue(name))});
    }
};

} // namespace embed
