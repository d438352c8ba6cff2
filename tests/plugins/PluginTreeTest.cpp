#include <tests/support/TestPlugins.h>

#include <marlet/plugins/PluginTreeCategoryNode.h>
#include <marlet/plugins/PluginTreePluginNode.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using NodeType = AbstractPluginTreeNode::NodeType;

TEST(PluginTree, HoldsCategoriesAndPlugins)
{
    const auto root = PluginTreeCategoryNode::CreateRootNode();
    const auto category = PluginTreeCategoryNode::Create(u"");
    EXPECT_EQ(root->Type(), NodeType::Root);
    EXPECT_EQ(root->Name(), u"Root");
    EXPECT_TRUE(root->ChildNodes().IsEmpty());
    EXPECT_EQ(category->Type(), NodeType::Category);
    EXPECT_EQ(category->Name(), u"");

    const auto plugin = std::make_shared<TestPlugin>();
    const auto node = PluginTreePluginNode::Create(plugin);
    root->ChildNodes().Add(category);
    category->ChildNodes().Add(node);
    EXPECT_EQ(node->Type(), NodeType::Plugin);
    EXPECT_EQ(&node->Name(), &plugin->name);
    EXPECT_TRUE(node->ChildNodes().IsEmpty());
    EXPECT_EQ(std::as_const(*root).ChildNodes().front()->ChildNodes().front(), node);
}

TEST(PluginTree, OutlivesItsPlugins)
{
    auto plugin = std::make_shared<TestPlugin>();
    const auto node = std::static_pointer_cast<PluginTreePluginNode>(PluginTreePluginNode::Create(plugin));
    EXPECT_EQ(node->Plugin(), plugin);
    plugin.reset();
    EXPECT_EQ(node->Plugin(), nullptr);
    EXPECT_EQ(node->Type(), NodeType::Plugin);
    EXPECT_THROW(node->Name(), std::logic_error);
}

} // namespace
} // namespace marlet::test
