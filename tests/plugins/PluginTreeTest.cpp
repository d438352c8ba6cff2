#include <tests/support/TestPlugins.h>

#include <marlet/plugins/PluginTreeCategoryNode.h>
#include <marlet/plugins/PluginTreePluginNode.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

TEST(PluginTree, HasNodesOfThreeTypes)
{
    const auto plugin = std::make_shared<TestPlugin>();
    const struct {
        std::shared_ptr<AbstractPluginTreeNode> node;
        int type;
        WideString name;
    } kCases[] = {
        {PluginTreeCategoryNode::CreateRootNode(), 0, u"Root"},
        {PluginTreeCategoryNode::Create(u""), 1, u""},
        {PluginTreeCategoryNode::Create(u"Blurs"), 1, u"Blurs"},
        {PluginTreePluginNode::Create(plugin), 2, plugin->name},
    };
    for (const auto &[node, type, name] : kCases) {
        EXPECT_EQ(static_cast<int>(node->Type()), type);
        EXPECT_EQ(node->Name(), name);
        EXPECT_TRUE(node->ChildNodes().IsEmpty());
        node->ChildNodes().Add(PluginTreeCategoryNode::Create(u"below"));
        EXPECT_EQ(std::as_const(*node).ChildNodes().Count(), 1u);
    }
}

TEST(PluginTree, OutlivesItsPlugins)
{
    auto plugin = std::make_shared<TestPlugin>();
    const auto node = std::static_pointer_cast<PluginTreePluginNode>(PluginTreePluginNode::Create(plugin));
    EXPECT_EQ(node->Plugin(), plugin);
    EXPECT_EQ(node->Name(), plugin->name);
    plugin.reset();
    EXPECT_EQ(node->Plugin(), nullptr);
    EXPECT_THROW(node->Name(), std::logic_error);
}

} // namespace
} // namespace marlet::test
