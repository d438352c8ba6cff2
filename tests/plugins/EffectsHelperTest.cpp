#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>

#include <QDomDocument>
#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using Effects = EffectsHelper::Effects;
using Point2 = kytl::matl::KyPoint<2, float>;
using Point3 = kytl::matl::KyPoint<3, float>;
using Spatial = KeyFrameList::SpatialDataType;

/// A document with an empty root, as a host that writes parts of a project itself has it.
struct Dom {
    QDomDocument document;
    QDomElement root = document.createElement("Root");

    Dom() { document.appendChild(root); }
    explicit Dom(const char *text)
    {
        document.setContent(QString(text));
        root = document.documentElement();
    }
    std::string Text() const { return ToUtf8(XmlFromDom(&root)); }
};

struct EffectsHelperTest : testing::Test {
    std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    Effects effects;

    EffectsHelperTest()
    {
        manager->plugins = {plugin};
        effects.Add(EffectInstance::Create(plugin));
        effects.Add(EffectInstance::Create(plugin));
    }
};

TEST(EffectsHelper, ComparesVersionsFromMajorToBuild)
{
    using Version = AbstractPlugin::VersionInfo;
    const struct {
        Version a;
        Version b;
        int order;
    } kCases[] = {{{1, 2, 3, 4}, {1, 2, 3, 4}, 0},         {{1, 2, 3, 4}, {1, 2, 3, 5}, -1},
                  {{1, 2, 4, 0}, {1, 2, 3, 5}, 1},         {{1, 1, 9, 9}, {1, 2, 0, 0}, -1},
                  {{2, 0, 0, 0}, {1, 9, 9, 9}, 1},         {{0xFFFFFFFF, 0, 0, 0}, {1, 0, 0, 0}, 1},
                  {{0, 0, 0, 0x80000000}, {0, 0, 0, 1}, 1}};
    for (const auto &c : kCases) {
        EXPECT_EQ(EffectsHelper::ComparePluginVersions(c.a, c.b), c.order);
        EXPECT_EQ(EffectsHelper::ComparePluginVersions(c.b, c.a), -c.order);
    }
}

TEST_F(EffectsHelperTest, WritesAndReadsAListInOrder)
{
    Dom dom;
    EffectsHelper::SerializeEffects(&dom.document, &dom.root, effects);
    Effects read;
    EffectsHelper::DeserializeEffects(&dom.root, read, manager);
    ASSERT_EQ(read.Count(), 2u);
    EXPECT_EQ(read[0]->ID(), effects[0]->ID());
    EXPECT_EQ(read[1]->ID(), effects[1]->ID());
    Dom again;
    EffectsHelper::SerializeEffects(&again.document, &again.root, read);
    EXPECT_EQ(again.Text(), dom.Text());

    Dom empty;
    EffectsHelper::SerializeEffects(&empty.document, &empty.root, {});
    EXPECT_EQ(empty.Text(), "<Root>\n <Effects/>\n</Root>\n");
    EffectsHelper::DeserializeEffects(&empty.root, read, manager);
    EXPECT_TRUE(read.IsEmpty());
}

TEST_F(EffectsHelperTest, EmptiesTheListWithoutAManagerOrAnElement)
{
    Dom dom("<Root><Effects><Instance/></Effects></Root>");
    Effects read = effects;
    EffectsHelper::DeserializeEffects(&dom.root, read, nullptr);
    EXPECT_TRUE(read.IsEmpty());
    Dom without("<Root><effects><Instance/></effects></Root>");
    EffectsHelper::DeserializeEffects(&without.root, effects, manager);
    EXPECT_TRUE(effects.IsEmpty());
    EXPECT_EQ(plugin->living, 0);
}

TEST_F(EffectsHelperTest, LooksForThePluginBeforeAnythingElse)
{
    const struct {
        const char *instance;
        const char *words;
    } kCases[] = {
        {"<Instance Version=\"9\"><PluginName>Glow \xc3\xa4</PluginName>"
         "<PluginID>0000000a-0000-0000-0000-000000000000</PluginID></Instance>",
         "This project uses the Glow \xc3\xa4 plugin but it cannot be found."},
        {"<Instance><PluginID>0000000a-0000-0000-0000-000000000000</PluginID></Instance>",
         "Missing element\nPluginName"},
        {"<Other/><Instance><PluginName/></Instance>", "Missing element\nPluginID"},
        {"<Instance><PluginID/></Instance>", "Cannot construct KyID from string"},
    };
    const Effects before = effects;
    for (const auto &c : kCases) {
        Dom dom(("<Root><Effects>" + std::string(c.instance) + "</Effects></Root>").c_str());
        try {
            EffectsHelper::DeserializeEffects(&dom.root, effects, manager);
            FAIL() << c.words;
        } catch (const std::exception &e) {
            EXPECT_STREQ(e.what(), c.words);
        }
        EXPECT_EQ(effects, before);
    }
}

TEST_F(EffectsHelperTest, KeepsPanelStatesSortedByName)
{
    Dom dom;
    EffectsHelper::SerializeUIState(&dom.document, &dom.root,
                                    {{"b", {false}}, {"a<", {true}}, {"c", {true}}, {"B", {false}}});
    EXPECT_EQ(dom.Text(), "<Root>\n"
                          " <UIState>\n"
                          "  <Property name=\"B\" vis=\"0\"/>\n"
                          "  <Property name=\"a&lt;\" vis=\"1\"/>\n"
                          "  <Property name=\"b\" vis=\"0\"/>\n"
                          "  <Property name=\"c\" vis=\"1\"/>\n"
                          " </UIState>\n"
                          "</Root>\n");
}

TEST_F(EffectsHelperTest, TakesPanelStatesOfNamesThatAreThere)
{
    EffectsHelper::UIStates states = {{"hidden", {true}}, {"shown", {false}}, {"bare", {false}},
                                      {"odd", {true}},    {"", {true}},       {"twice", {true}},
                                      {"absent", {false}}};
    Dom none("<Root/>");
    EffectsHelper::SynchronizeUIState(&none.root, states);
    EXPECT_FALSE(states["bare"].visible);

    Dom dom("<Root><UIState><Property name='hidden' vis='0'/><Property name='shown' vis='-7'/>"
            "<Property name='bare'/><Property name='odd' vis='yes'/><Property vis='0'/>"
            "<Property name='gone' vis='0'/><Property name='twice'/><Property name='twice' vis='0'/>"
            "</UIState></Root>");
    EffectsHelper::SynchronizeUIState(&dom.root, states);
    EXPECT_EQ(states.size(), 7u);
    for (const auto &[name, visible] : {std::pair{"hidden", false},
                                        {"shown", true},
                                        {"bare", true},
                                        {"odd", false},
                                        {"", false},
                                        {"twice", false},
                                        {"absent", false}})
        EXPECT_EQ(states[name].visible, visible) << name;
}

TEST(EffectsHelper, KeepsTheIDsOfKeyFramesThatItTakesOver)
{
    PropertyManager properties;
    PropertyManager fromFile;
    properties.CreateProperty("a", 1, PropertyManager::Type::Animatable, nullptr);
    fromFile.CreateProperty("a", 2, PropertyManager::Type::Animatable, nullptr);
    properties.KeyFrames("a").Add(KeyFrame(9, 9));
    fromFile.KeyFrames("a").Add(KeyFrame(5, 3));
    EffectsHelper::SynchronizeSourceWithDest(properties, fromFile);
    EXPECT_EQ(properties.KeyFrames("a").Identifiers(), fromFile.KeyFrames("a").Identifiers());
    EXPECT_EQ(properties.DefaultValue("a"), PropertyValue(1));
}

/// Whether key frames move along a path is the plug-in's to say, and theirs of which points.
TEST_F(EffectsHelperTest, EvaluatesAlikeBeforeAndAfterTheNextSave)
{
    const std::vector<PropertyValue> flat = {Point2{0, 0}, Point2{10, 30}, Point2{50, 0}};
    const std::vector<PropertyValue> deep = {Point3{0, 0, 1}, Point3{10, 30, 2}, Point3{50, 0, 3}};
    const std::vector<PropertyValue> numbers = {0.f, 10.f, 50.f};
    const std::vector<PropertyValue> mixed = {Point2{0, 0}, Point2{10, 30}, Point2{50, 0}, 5.f};
    const struct {
        const char *name;
        PropertyValue ofPlugin;
        bool isPluginSpatial;
        std::vector<PropertyValue> inFile;
        bool isFileSpatial;
        Spatial expected;
    } kCases[] = {
        {"the same", Point2{}, true, flat, true, Spatial::Spatial2D},
        {"the file knows no path", Point2{}, true, flat, false, Spatial::Spatial2D},
        {"the plug-in knows no path", Point3{}, false, deep, true, Spatial::NotSpatial},
        {"the plug-in lost a dimension", Point2{}, true, deep, true, Spatial::Spatial3D},
        {"the plug-in has a point now", Point2{}, true, numbers, false, Spatial::NotSpatial},
        {"the plug-in has a number now", 1.f, true, deep, true, Spatial::NotSpatial},
        {"not all are points", Point2{}, true, mixed, true, Spatial::NotSpatial},
        {"no key frames", Point3{}, true, {}, false, Spatial::Spatial3D},
    };
    for (const auto &c : kCases) {
        plugin->properties.Clear();
        const auto create =
            c.isPluginSpatial ? &PropertyManager::CreateSpatialProperty : &PropertyManager::CreateProperty;
        (plugin->properties.*create)("p", c.ofPlugin, PropertyManager::Type::Animatable, nullptr);
        PropertyManager fromFile;
        const auto createInFile =
            c.isFileSpatial ? &PropertyManager::CreateSpatialProperty : &PropertyManager::CreateProperty;
        (fromFile.*createInFile)("p", c.inFile.empty() ? PropertyValue() : c.inFile[0],
                                 PropertyManager::Type::Animatable, nullptr);
        for (std::size_t i = 0; i < c.inFile.size(); ++i)
            fromFile.KeyFrames("p").Add(KeyFrame(static_cast<int>(100 * i), c.inFile[i]));

        const auto effect = EffectInstance::Create(plugin);
        EffectsHelper::SynchronizeSourceWithDest(effect->Properties(), fromFile);
        const auto read = EffectInstance::CreateFromXml(plugin, effect->Serialize(), {});
        EXPECT_EQ(effect->Properties().KeyFrames("p").SpatialType(), c.expected) << c.name;
        for (const int time : {0, 30, 150, 300})
            EXPECT_EQ(read->Properties().ValueAtTime("p", time), effect->Properties().ValueAtTime("p", time))
                << c.name << " at " << time;
    }
}

} // namespace
} // namespace marlet::test
