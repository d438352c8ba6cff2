#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

#include <memory>
#include <vector>

namespace marlet::tool
{

/// The properties of a plug-in and the panel that edits them, made together so that every control finds its
/// property. Controls go into the last group, or to the root before there is one.
class PluginPanel
{
public:
    using Node = project::AbstractPluginUITreeNode;

    struct IntRange {
        int minimum;
        int maximum;
        project::WideString suffix;
    };

    struct FloatRange {
        float minimum;
        float maximum;
        int decimalPlaces;
        project::WideString suffix;
    };

    struct MenuItem {
        project::WideString text;
        int value;
    };

    PluginPanel();

    PluginPanel &Group(const project::WideString &label);
    PluginPanel &Int(const char *property, const project::WideString &label, int value, const IntRange &range,
                     int options = 0);
    PluginPanel &Float(const char *property, const project::WideString &label, float value,
                       const FloatRange &range, int options = 0);
    PluginPanel &Check(const char *property, const project::WideString &label, bool value, int options = 0);
    PluginPanel &Menu(const char *property, const project::WideString &label, int value,
                      const std::vector<MenuItem> &items, int options = 0);
    /// In percent of the frame's size, from its upper left corner.
    PluginPanel &Point(const char *property, const project::WideString &label, float x, float y,
                       int options = 0);
    PluginPanel &Angle(const char *property, const project::WideString &label, float degrees, bool allowTurns,
                       int options = 0);
    PluginPanel &Color(const char *property, const project::WideString &label,
                       const kytl::KyColorRGBA_32f &value, int options = 0);
    PluginPanel &Layer(const char *property, const project::WideString &label, int options = 0);
    /// Nine properties such as "shadowsHue": hue in degrees, saturation and lightness from -100 to 100.
    PluginPanel &ColorWheels(const project::WideString &label, int options = 0);
    /// The property chooses what is shown, 0 for all channels together to 4 for alpha. 25 properties such as
    /// "redGamma": levels from 0 to 255, gamma from 0.1 to 10.
    PluginPanel &Histogram(const char *property, const project::WideString &label, int options = 0);

    const project::PropertyManager &Properties() const { return *properties_; }
    const std::shared_ptr<Node> &Tree() const { return root_; }

private:
    void Property(const char *name, const project::PropertyValue &value, project::PropertyManager::Type type);
    PluginPanel &Add(const std::shared_ptr<Node> &node);

    std::shared_ptr<project::PropertyManager> properties_;
    std::shared_ptr<Node> root_;
    std::shared_ptr<Node> group_;
};

} // namespace marlet::tool
