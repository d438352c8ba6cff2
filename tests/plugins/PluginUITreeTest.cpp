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
using NodeType = Node::NodeType;

constexpr int kHidden = Node::kHidden;
constexpr int kValues[] = {10, 20, 30};

PluginUIHistogram::PropertyNames HistogramNames(const char *first)
{
    return {first, "", "", "", ""};
}

/// One control of each class, which edits the property "p", with that option.
std::vector<NodePtr> Controls(const NodePtr &parent, const char *property, int options)
{
    return {std::make_shared<PluginUISliderInt>(parent, u"Label", u"px", property, options, 9, -9),
            std::make_shared<PluginUISliderFloat>(parent, u"Label", u"%", property, options, 1.5f, 0.5f, 3),
            std::make_shared<PluginUICheckBox>(parent, u"Label", property, options),
            std::make_shared<PluginUIComboBox>(parent, u"Label", property, options, u"", kValues),
            std::make_shared<PluginUIPoint>(parent, u"Label", property, options),
            std::make_shared<PluginUIAngle>(parent, u"Label", property, options, true),
            std::make_shared<PluginUIColorPicker>(parent, u"Label", property, options),
            std::make_shared<PluginUILayerPicker>(parent, u"Label", property, options),
            std::make_shared<PluginUIHistogram>(parent, u"Label", property, options, HistogramNames("rgb"),
                                                HistogramNames("red"), HistogramNames("green"),
                                                HistogramNames("blue"), HistogramNames("alpha")),
            std::make_shared<PluginUIColorWheels>(
                parent, u"Label", options,
                PluginUIColorWheels::PropertyNames{"hue", "", "", "", "", "", "", "", ""})};
}

std::shared_ptr<TestPlugin> PluginWith(const NodePtr &panel)
{
    auto plugin = std::make_shared<TestPlugin>();
    plugin->panel = panel;
    return plugin;
}

TEST(PluginUITree, NodesAnswerWhatTheyWereMadeWith)
{
    auto parent = PluginUINode::CreateTreeRoot();
    std::vector<NodePtr> controls = Controls(parent, "p", 5);
    constexpr NodeType kTypes[] = {NodeType::SliderInt,   NodeType::SliderFloat, NodeType::CheckBox,
                                   NodeType::ComboBox,    NodeType::Point,       NodeType::Angle,
                                   NodeType::ColorPicker, NodeType::LayerPicker, NodeType::Histogram,
                                   NodeType::ColorWheels};
    EXPECT_TRUE(parent->ChildNodes().IsEmpty());
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const Node &node = *controls[i];
        EXPECT_EQ(node.Type(), kTypes[i]);
        EXPECT_EQ(node.Name(), u"Label");
        EXPECT_EQ(node.ParentNode(), parent);
        EXPECT_TRUE(node.ChildNodes().IsEmpty());
        EXPECT_STREQ(node.PropertyManagerName(), node.Type() == NodeType::ColorWheels ? "" : "p");
        EXPECT_EQ(node.Options(), 5);
    }
    parent.reset();
    for (const NodePtr &node : controls)
        EXPECT_EQ(node->ParentNode(), nullptr);
    EXPECT_STREQ(PluginUIPoint(nullptr, u"", nullptr, 0).PropertyManagerName(), "");
}

TEST(PluginUITree, ControlsKeepWhatIsTheirOwn)
{
    const std::vector<NodePtr> controls = Controls(nullptr, "p", 0);
    const auto &whole = dynamic_cast<const PluginUISliderInt &>(*controls[0]);
    int low = 0;
    int high = 0;
    whole.MinMaxRange(low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(9, -9));
    EXPECT_EQ(whole.Suffix(), u"px");

    const auto &real = dynamic_cast<const PluginUISliderFloat &>(*controls[1]);
    float first = 0;
    float last = 0;
    real.MinMaxRange(first, last);
    EXPECT_EQ(std::pair(first, last), std::pair(1.5f, 0.5f));
    EXPECT_EQ(real.Suffix(), u"%");
    EXPECT_EQ(real.DecimalPlaces(), 3);

    EXPECT_TRUE(dynamic_cast<const PluginUIAngle &>(*controls[5]).AllowTurns());
    EXPECT_EQ(dynamic_cast<const PluginUIColorWheels &>(*controls[9]).Names().shadowsHue, "hue");
    const auto &histogram = dynamic_cast<const PluginUIHistogram &>(*controls[8]);
    EXPECT_EQ(histogram.RGBPropertyNames().inputBlack, "rgb");
    EXPECT_EQ(histogram.RedPropertyNames().inputBlack, "red");
    EXPECT_EQ(histogram.GreenPropertyNames().inputBlack, "green");
    EXPECT_EQ(histogram.BluePropertyNames().inputBlack, "blue");
    EXPECT_EQ(histogram.AlphaPropertyNames().inputBlack, "alpha");
}

TEST(PluginUITree, GroupsHaveALabelAndNothingElse)
{
    const auto root = PluginUINode::CreateTreeRoot();
    const auto group = PluginUINode::CreatePropertyGroup(root, u"Group");
    EXPECT_EQ(root->Type(), NodeType::Root);
    EXPECT_EQ(root->Name(), u"");
    EXPECT_EQ(root->ParentNode(), nullptr);
    EXPECT_TRUE(root->ChildNodes().IsEmpty());
    EXPECT_EQ(group->Type(), NodeType::PropertyGroup);
    EXPECT_EQ(group->Name(), u"Group");
    EXPECT_EQ(group->ParentNode(), root);
    for (const NodePtr &node : {root, group}) {
        EXPECT_STREQ(node->PropertyManagerName(), "");
        EXPECT_EQ(node->Options(), 0);
    }
}

TEST(PluginUITree, MenusArePartedAtEveryBar)
{
    using Items = std::vector<std::pair<WideString, int>>;
    const struct {
        const char16_t *text;
        Items items;
    } kCases[] = {{u"Add|Screen|Multiply", {{u"Add", 10}, {u"Screen", 20}, {u"Multiply", 30}}},
                  {u"Add||Multiply", {{u"Add", 10}, {u"", 20}, {u"Multiply", 30}}},
                  {u"|", {{u"", 10}, {u"", 20}}},
                  {u"", {{u"", 10}}}};
    for (const auto &c : kCases) {
        const PluginUIComboBox menu(nullptr, u"", "p", 0, c.text, kValues);
        Items items;
        for (const auto &item : menu.MenuItems())
            items.emplace_back(item.text, item.value);
        EXPECT_EQ(items, c.items);
    }
    EXPECT_THROW(PluginUIComboBox(nullptr, u"", "p", 0, u"a", nullptr), std::invalid_argument);
}

TEST(PluginUITree, GivesStatesToControlsOfOneValueOnly)
{
    const auto root = PluginUINode::CreateTreeRoot();
    for (const int options : {0, 1, kHidden, ~kHidden, ~0}) {
        for (const NodePtr &control : Controls(root, "p", options)) {
            root->ChildNodes() = {control};
            const auto states = EffectsHelper::CreateUIState(PluginWith(root));
            if (control->Type() > NodeType::ColorPicker) {
                EXPECT_TRUE(states.empty());
                continue;
            }
            ASSERT_EQ(states.size(), 1u);
            EXPECT_EQ(states.at("p").visible, options == 0 || options == 1 || options == ~kHidden);
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
