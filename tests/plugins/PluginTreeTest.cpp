#include <tests/support/TestPlugins.h>

#include <marlet/plugins/PluginTreePluginNode.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

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
