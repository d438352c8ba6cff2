#include <tests/support/TestPlugins.h>

#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/plugins/PluginUIAngle.h>
#include <marlet/plugins/PluginUIColorPicker.h>
#include <marlet/plugins/PluginUIColorWheels.h>
#include <marlet/plugins/PluginUIComboBox.h>
#include <marlet/plugins/PluginUIHistogram.h>
#include <marlet/plugins/PluginUIPoint.h>
#include <marlet/plugins/PluginUISliderInt.h>

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

TEST(PluginUITree, HasNodesThatSayWhatTheyWereMadeWith)
{
    const auto root = PluginUINode::CreateTreeRoot();
    const auto group = PluginUINode::CreatePropertyGroup(root, u"G");
    const PluginUIHistogram::PropertyNames names;
    constexpr int kValues[] = {1};
    const struct {
        NodePtr node;
        int type;
        NodePtr parent;
        const char16_t *name;
        const char *property;
        int options;
    } kCases[] = {
        {root, 0, nullptr, u"", "", 0},
        {group, 1, root, u"G", "", 0},
        {std::make_shared<PluginUISliderInt>(group, u"A", u"s", "a", 5, -3, 9), 2, group, u"A", "a", 5},
        {std::make_shared<PluginUISliderFloat>(group, u"B", u"s", "b", 6, 0.f, 1.f, 2), 3, group, u"B", "b",
         6},
        {std::make_shared<PluginUICheckBox>(group, u"C", "c", 7), 4, group, u"C", "c", 7},
        {std::make_shared<PluginUIComboBox>(group, u"D", "d", 8, u"x", kValues), 5, group, u"D", "d", 8},
        {std::make_shared<PluginUIPoint>(group, u"E", "e", 9), 6, group, u"E", "e", 9},
        {std::make_shared<PluginUIAngle>(group, u"F", "f", 10, true), 7, group, u"F", "f", 10},
        {std::make_shared<PluginUIColorPicker>(group, u"G", "g", 11), 8, group, u"G", "g", 11},
        {std::make_shared<PluginUILayerPicker>(group, u"H", "h", 12), 9, group, u"H", "h", 12},
        {std::make_shared<PluginUIColorWheels>(group, u"I", 13, PluginUIColorWheels::PropertyNames{}), 10,
         group, u"I", "", 13},
        {std::make_shared<PluginUIHistogram>(group, u"J", "j", 14, names, names, names, names, names), 11,
         group, u"J", "j", 14},
        {std::make_shared<PluginUIPoint>(nullptr, u"", nullptr, 0), 6, nullptr, u"", "", 0},
        {std::make_shared<PluginUIPoint>(PluginUINode::CreateTreeRoot(), u"its parent is gone", "k", 0), 6,
         nullptr, u"its parent is gone", "k", 0},
    };
    for (const auto &c : kCases) {
        EXPECT_EQ(static_cast<int>(c.node->Type()), c.type);
        EXPECT_EQ(c.node->ParentNode(), c.parent) << c.type;
        EXPECT_EQ(c.node->Name(), c.name) << c.type;
        EXPECT_STREQ(c.node->PropertyManagerName(), c.property) << c.type;
        EXPECT_EQ(c.node->Options(), c.options) << c.type;
        EXPECT_TRUE(c.node->ChildNodes().IsEmpty()) << c.type;
        c.node->ChildNodes().Add(nullptr);
        EXPECT_EQ(std::as_const(*c.node).ChildNodes().Count(), 1u) << c.type;
    }
}

TEST(PluginUITree, HasControlsThatKnowMore)
{
    const PluginUISliderInt whole(nullptr, u"", u"px", "p", 0, 9, -3);
    int least = 0, most = 0;
    whole.MinMaxRange(least, most);
    EXPECT_EQ(std::pair(least, most), std::pair(9, -3)); // as it was given
    EXPECT_EQ(whole.Suffix(), u"px");

    const PluginUISliderFloat number(nullptr, u"", u"%", "p", 0, -0.5f, 2.5f, 3);
    float from = 0, to = 0;
    number.MinMaxRange(from, to);
    EXPECT_EQ(std::pair(from, to), std::pair(-0.5f, 2.5f));
    EXPECT_EQ(number.Suffix(), u"%");
    EXPECT_EQ(number.DecimalPlaces(), 3);

    EXPECT_TRUE(PluginUIAngle(nullptr, u"", "p", 0, true).AllowTurns());
    EXPECT_FALSE(PluginUIAngle(nullptr, u"", "p", 0, false).AllowTurns());

    const PluginUIColorWheels wheels(nullptr, u"", 0, {"1", "2", "3", "4", "5", "6", "7", "8", "9"});
    const auto &[a, b, c, d, e, f, g, h, i] = wheels.Names();
    EXPECT_EQ(a + b + c + d + e + f + g + h + i, "123456789");

    const auto set = [](const char *name) {
        return PluginUIHistogram::PropertyNames{name + NarrowString("1"), name + NarrowString("2"),
                                                name + NarrowString("3"), name + NarrowString("4"),
                                                name + NarrowString("5")};
    };
    const PluginUIHistogram histogram(nullptr, u"", "p", 0, set("rgb"), set("r"), set("g"), set("b"),
                                      set("a"));
    const auto joined = [](const PluginUIHistogram::PropertyNames &names) {
        const auto &[first, second, third, fourth, fifth] = names;
        return first + " " + second + " " + third + " " + fourth + " " + fifth;
    };
    EXPECT_EQ(joined(histogram.RGBPropertyNames()), "rgb1 rgb2 rgb3 rgb4 rgb5");
    EXPECT_EQ(joined(histogram.RedPropertyNames()), "r1 r2 r3 r4 r5");
    EXPECT_EQ(joined(histogram.GreenPropertyNames()), "g1 g2 g3 g4 g5");
    EXPECT_EQ(joined(histogram.BluePropertyNames()), "b1 b2 b3 b4 b5");
    EXPECT_EQ(joined(histogram.AlphaPropertyNames()), "a1 a2 a3 a4 a5");
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
