#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIColorWheels_Impl;

/// Three wheels that grade the shadows, the midtones and the highlights of a picture, by nine properties. As
/// a control of many properties it has the name of none.
class MARLET_EXPORT PluginUIColorWheels : public PluginUITreeNode
{
public:
    struct PropertyNames {
        NarrowString shadowsHue;
        NarrowString shadowsSaturation;
        NarrowString shadowsLightness;
        NarrowString midtonesHue;
        NarrowString midtonesSaturation;
        NarrowString midtonesLightness;
        NarrowString highlightsHue;
        NarrowString highlightsSaturation;
        NarrowString highlightsLightness;
    };

    PluginUIColorWheels(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name, int options,
                        const PropertyNames &names);
    ~PluginUIColorWheels() override;

    const PropertyNames &Names() const;

private:
    ValuePtr<PluginUIColorWheels_Impl> impl_;
};

} // namespace marlet::project
