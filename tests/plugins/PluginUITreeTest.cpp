#include <tests/support/TestPlugins.h>

#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/plugins/PluginUIColorPicker.h>
#include <marlet/plugins/PluginUIColorWheels.h>
#include <marlet/plugins/PluginUIComboBox.h>
#include <marlet/plugins/PluginUIHistogram.h>
#include <marlet/plugins/PluginUIPoint.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using Node = AbstractPluginUITreeNode;
using NodePtr = std::shared_ptr<Node>;

constexpr int kHidden = Node::kHidden;

/// The first and the last of the kinds that have a state of their own, then the three without.
std::vector<NodePtr> Controls(int options)
{
    const PluginUIHistogram::PropertyNames names;
    return {
        std::make_shared<PluginUISliderFloat>(nullptr, u"", u"", "p", options, 0.f, 1.f, 3),
        std::make_shared<PluginUIColorPicker>(nullptr, u"", "p", options),
        std::make_shared<PluginUILayerPicker>(nullptr, u"", "p", options),
        std::make_shared<PluginUIHistogram>(nullptr, u"", "p", options, names, names, names, names, names),
        std::make_shared<PluginUIColorWheels>(nullptr, u"", options, PluginUIColorWheels::PropertyNames{})};
}

std::shared_ptr<TestPlugin> PluginWith(const NodePtr &panel)
{
    auto plugin = std::make_shared<TestPlugin>();
    plugin->panel = panel;
    return plugin;
}

TEST(PluginUITree, MenusArePartedAtEveryBar)
{
    using Items = std::vector<std::pair<WideString, int>>;
    constexpr int kValues[] = {10, 20, 30};
    const std::pair<const char16_t *, Items> kCases[] = {
        {u"Add||Multiply", {{u"Add", 10}, {u"", 20}, {u"Multiply", 30}}},
        {u"|", {{u"", 10}, {u"", 20}}},
        {u"", {{u"", 10}}}};
    for (const auto &[text, expected] : kCases) {
        const PluginUIComboBox menu(nullptr, u"", "p", 0, text, kValues);
        Items items;
        for (const auto &item : menu.MenuItems())
            items.emplace_back(item.text, item.value);
        EXPECT_EQ(items, expected);
    }
    EXPECT_THROW(PluginUIComboBox(nullptr, u"", "p", 0, u"a", nullptr), std::invalid_argument);
}

TEST(PluginUITree, GivesStatesToControlsOfOneValueOnly)
{
    const auto root = PluginUINode::CreateTreeRoot();
    for (const int options : {0, kHidden, ~kHidden, ~0}) {
        for (const NodePtr &control : Controls(options)) {
            root->ChildNodes() = {control};
            const auto states = EffectsHelper::CreateUIState(PluginWith(root));
            EXPECT_EQ(states.size(), control->Type() > Node::NodeType::ColorPicker ? 0u : 1u);
            for (const auto &[name, state] : states)
                EXPECT_EQ(state.visible, options == 0 || options == ~kHidden);
        }
    }
    EXPECT_TRUE(EffectsHelper::CreateUIState(PluginWith(nullptr)).empty());
    EXPECT_TRUE(EffectsHelper::CreateUIState(nullptr).empty());
}

TEST(PluginUITree, IsWalkedDepthFirst)
{
    // A picker's own children count, too, and so does what stands below a control.
    const auto root = PluginUINode::CreateTreeRoot();
    const auto group = PluginUINode::CreatePropertyGroup(root, u"");
    const auto first = std::make_shared<PluginUILayerPicker>(root, u"", "1", kHidden);
    const auto below = std::make_shared<PluginUILayerPicker>(first, u"", "2", 0);
    const auto last = std::make_shared<PluginUILayerPicker>(root, u"", "3", 0);
    root->ChildNodes() = {group, nullptr, last};
    group->ChildNodes() = {first, std::make_shared<PluginUIPoint>(group, u"", "p", kHidden)};
    first->ChildNodes() = {below, std::make_shared<PluginUIPoint>(first, u"", "p", 0)};
    const auto plugin = PluginWith(root);
    EXPECT_THAT(EffectInstance::Create(plugin)->LayerPickerProperties(), testing::ElementsAre("1", "2", "3"));
    // The later of two nodes that edit one property is the one in the group itself.
    EXPECT_FALSE(EffectsHelper::CreateUIState(plugin).at("p").visible);
}

TEST(PluginUITree, MayRunInACircleOrBeDeep)
{
    const auto root = PluginUINode::CreateTreeRoot();
    NodePtr node = root;
    std::vector<NodePtr> nodes;
    for (int i = 0; i < 200000; ++i) {
        const auto child = std::make_shared<PluginUICheckBox>(node, u"", "p", 0);
        node->ChildNodes().Add(child);
        nodes.push_back(node = child);
    }
    node->ChildNodes().Add(root);
    EXPECT_EQ(EffectsHelper::CreateUIState(PluginWith(root)).size(), 1u);
    for (const NodePtr &deep : nodes)
        deep->ChildNodes().Clear();
}

} // namespace
} // namespace marlet::test
