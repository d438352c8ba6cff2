#include <marlet/plugins/PluginUIComboBox.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

#include <algorithm>
#include <stdexcept>

namespace marlet::project
{

struct PluginUIComboBox_Impl : PluginUIControl_Impl {
    std::vector<PluginUIComboBox::MenuItem> items;
};

namespace
{

std::vector<PluginUIComboBox::MenuItem> Items(std::u16string_view texts, const int *values)
{
    if (values == nullptr)
        throw std::invalid_argument("A combo box needs values for its items");
    std::vector<PluginUIComboBox::MenuItem> items;
    items.reserve(1 + static_cast<std::size_t>(std::ranges::count(texts, u'|')));
    while (true) {
        const std::size_t end = texts.find(u'|');
        items.push_back({WideString(texts.substr(0, end)), values[items.size()]});
        if (end == std::u16string_view::npos)
            return items;
        texts.remove_prefix(end + 1);
    }
}

} // namespace

PluginUIComboBox::PluginUIComboBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                   const char *property, int options, const WideString &items,
                                   const int *values)
    : impl_(std::make_unique<PluginUIComboBox_Impl>(
          PluginUIComboBox_Impl{{parent, name, property, options}, Items(items, values)}))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUIComboBox, ComboBox)

const std::vector<PluginUIComboBox::MenuItem> &PluginUIComboBox::MenuItems() const
{
    return impl_->items;
}

} // namespace marlet::project
