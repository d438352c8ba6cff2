#include <marlet/plugins/PluginUIComboBox.h>

#include <marlet/foundation/Arguments.h>

#include <algorithm>

namespace marlet::project
{

struct PluginUIComboBox_Impl {
    std::vector<PluginUIComboBox::MenuItem> items;
};

namespace
{

std::vector<PluginUIComboBox::MenuItem> Items(std::u16string_view texts, const int *values)
{
    Require(values, "values");
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
    : PluginUITreeNode(NodeType::ComboBox, parent, name, property, options),
      impl_(std::make_unique<PluginUIComboBox_Impl>(PluginUIComboBox_Impl{Items(items, values)}))
{
}

PluginUIComboBox::~PluginUIComboBox() = default;

const std::vector<PluginUIComboBox::MenuItem> &PluginUIComboBox::MenuItems() const
{
    return impl_->items;
}

} // namespace marlet::project
