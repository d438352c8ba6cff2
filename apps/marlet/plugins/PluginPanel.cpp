#include "PluginPanel.h"

#include <marlet/plugins/PluginUIAngle.h>
#include <marlet/plugins/PluginUICheckBox.h>
#include <marlet/plugins/PluginUIColorPicker.h>
#include <marlet/plugins/PluginUIColorWheels.h>
#include <marlet/plugins/PluginUIComboBox.h>
#include <marlet/plugins/PluginUIHistogram.h>
#include <marlet/plugins/PluginUILayerPicker.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/PluginUIPoint.h>
#include <marlet/plugins/PluginUISliderFloat.h>
#include <marlet/plugins/PluginUISliderInt.h>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr auto kAnimatable = PropertyManager::Type::Animatable;
constexpr auto kNotAnimatable = PropertyManager::Type::NotAnimatable;

} // namespace

PluginPanel::PluginPanel()
    : properties_(PropertyManager::Create()), root_(PluginUINode::CreateTreeRoot()), group_(root_)
{
}

void PluginPanel::Property(const char *name, const PropertyValue &value, PropertyManager::Type type)
{
    properties_->CreateProperty(name, value, type, nullptr);
}

PluginPanel &PluginPanel::Add(const std::shared_ptr<Node> &node)
{
    group_->ChildNodes().Add(node);
    return *this;
}

PluginPanel &PluginPanel::Group(const WideString &label)
{
    group_ = PluginUINode::CreatePropertyGroup(root_, label);
    root_->ChildNodes().Add(group_);
    return *this;
}

PluginPanel &PluginPanel::Int(const char *property, const WideString &label, int value, const IntRange &range,
                              int options)
{
    Property(property, value, kAnimatable);
    return Add(std::make_shared<PluginUISliderInt>(group_, label, range.suffix, property, options,
                                                   range.minimum, range.maximum));
}

PluginPanel &PluginPanel::Float(const char *property, const WideString &label, float value,
                                const FloatRange &range, int options)
{
    Property(property, value, kAnimatable);
    return Add(std::make_shared<PluginUISliderFloat>(group_, label, range.suffix, property, options,
                                                     range.minimum, range.maximum, range.decimalPlaces));
}

PluginPanel &PluginPanel::Check(const char *property, const WideString &label, bool value, int options)
{
    Property(property, value, kNotAnimatable);
    return Add(std::make_shared<PluginUICheckBox>(group_, label, property, options));
}

PluginPanel &PluginPanel::Menu(const char *property, const WideString &label, int value,
                               const std::vector<MenuItem> &items, int options)
{
    Property(property, value, kNotAnimatable);
    WideString texts;
    std::vector<int> values;
    for (const MenuItem &item : items) {
        texts += (values.empty() ? u"" : u"|") + item.text;
        values.push_back(item.value);
    }
    return Add(std::make_shared<PluginUIComboBox>(group_, label, property, options, texts, values.data()));
}

PluginPanel &PluginPanel::Point(const char *property, const WideString &label, float x, float y, int options)
{
    properties_->CreateSpatialProperty(property, kytl::matl::KyPoint<2, float>{x, y}, kAnimatable, nullptr);
    return Add(std::make_shared<PluginUIPoint>(group_, label, property, options));
}

PluginPanel &PluginPanel::Angle(const char *property, const WideString &label, float degrees, bool allowTurns,
                                int options)
{
    Property(property, degrees, kAnimatable);
    return Add(std::make_shared<PluginUIAngle>(group_, label, property, options, allowTurns));
}

PluginPanel &PluginPanel::Color(const char *property, const WideString &label,
                                const kytl::KyColorRGBA_32f &value, int options)
{
    Property(property, value, kAnimatable);
    return Add(std::make_shared<PluginUIColorPicker>(group_, label, property, options));
}

PluginPanel &PluginPanel::Layer(const char *property, const WideString &label, int options)
{
    Property(property, kytl::KyID(), kNotAnimatable);
    return Add(std::make_shared<PluginUILayerPicker>(group_, label, property, options));
}

PluginPanel &PluginPanel::ColorWheels(const WideString &label, int options)
{
    const PluginUIColorWheels::PropertyNames names{
        "shadowsHue",    "shadowsSaturation",    "shadowsLightness",
        "midtonesHue",   "midtonesSaturation",   "midtonesLightness",
        "highlightsHue", "highlightsSaturation", "highlightsLightness"};
    for (const NarrowString *name :
         {&names.shadowsHue, &names.shadowsSaturation, &names.shadowsLightness, &names.midtonesHue,
          &names.midtonesSaturation, &names.midtonesLightness, &names.highlightsHue,
          &names.highlightsSaturation, &names.highlightsLightness})
        Property(name->c_str(), 0.f, kAnimatable);
    return Add(std::make_shared<PluginUIColorWheels>(group_, label, options, names));
}

PluginPanel &PluginPanel::Histogram(const char *property, const WideString &label, int options)
{
    Property(property, 0, kNotAnimatable);
    const auto levels = [this](const NarrowString &channel) {
        PluginUIHistogram::PropertyNames names{channel + "InputBlack", channel + "InputWhite",
                                               channel + "Gamma", channel + "OutputBlack",
                                               channel + "OutputWhite"};
        Property(names.inputBlack.c_str(), 0, kAnimatable);
        Property(names.inputWhite.c_str(), 255, kAnimatable);
        Property(names.gamma.c_str(), 1.f, kAnimatable);
        Property(names.outputBlack.c_str(), 0, kAnimatable);
        Property(names.outputWhite.c_str(), 255, kAnimatable);
        return names;
    };
    const auto rgb = levels("rgb");
    const auto red = levels("red");
    const auto green = levels("green");
    const auto blue = levels("blue");
    const auto alpha = levels("alpha");
    return Add(
        std::make_shared<PluginUIHistogram>(group_, label, property, options, rgb, red, green, blue, alpha));
}

} // namespace marlet::tool
