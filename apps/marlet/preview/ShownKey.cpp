#include "ShownKey.h"

#include "plugins/ToolPlugin.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>

#include <boost/variant/apply_visitor.hpp>

#include <utility>

namespace marlet::tool
{

using namespace project;

void ShownKey::Add(const PropertyManager &properties, int time)
{
    for (const NarrowString &name : properties.PropertyNames()) {
        const PropertyValue value = properties.ValueAtTime(name.c_str(), time);
        // With its NUL: the same values of other properties are another key.
        bytes_.append(name.c_str(), name.size() + 1);
        Add(value.which());
        boost::apply_visitor([this](const auto &held) { Add(held); }, value);
        if (const auto *id = boost::get<kytl::KyID>(&value))
            ids_.push_back(*id);
    }
}

void ShownKey::Add(const kytl::KyList<std::shared_ptr<Mask>, std::vector> &masks, int time)
{
    for (const std::shared_ptr<Mask> &mask : masks) {
        const MotionPath &path = std::as_const(*mask).Path();
        Add(mask->IsVisible());
        Add(path.IsClosed());
        Add(std::as_const(*mask).Animation(), time);
        for (const std::shared_ptr<PathPoint> &point : path.Points())
            Add(std::as_const(*point).Animation(), time);
        Add(path.Points().size());
    }
}

void ShownKey::Add(const kytl::KyList<std::shared_ptr<EffectInstance>, std::vector> &effects, int time)
{
    for (const std::shared_ptr<EffectInstance> &effect : effects) {
        Add(effect->PluginID());
        Add(effect->Enabled());
        Add(std::as_const(*effect).Properties(), time);
        if (const auto *owner = dynamic_cast<const PrivateDataOwner *>(effect->Plugin().get())) {
            const std::vector<unsigned char> bytes = owner->PrivateBytes(*effect);
            bytes_.append(bytes.begin(), bytes.end());
            Add(bytes.size());
        }
    }
}

} // namespace marlet::tool
