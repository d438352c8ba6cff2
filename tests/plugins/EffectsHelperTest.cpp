#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
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
    } kCases[] = {{{1, 2, 3, 4}, {1, 2, 3, 4}, 0},
                  {{1, 2, 3, 4}, {1, 2, 3, 5}, -1},
                  {{1, 1, 9, 9}, {1, 2, 0, 0}, -1},
                  {{0xFFFFFFFF, 0, 0, 0}, {1, 9, 9, 9}, 1}};
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
    Dom again;
    EffectsHelper::SerializeEffects(&again.document, &again.root, read);
    EXPECT_EQ(again.Text(), dom.Text());

    // Without a manager or an element there are none.
    EffectsHelper::DeserializeEffects(&dom.root, read, nullptr);
    EXPECT_TRUE(read.IsEmpty());
    Dom without("<Root><effects/></Root>");
    EffectsHelper::DeserializeEffects(&without.root, effects, manager);
    EXPECT_TRUE(effects.IsEmpty());
    EXPECT_EQ(plugin->living, 0);
}

TEST_F(EffectsHelperTest, LooksForThePluginBeforeAnythingElse)
{
    const std::pair<std::string, const char *> kCases[] = {
        {"<Instance Version=\"9\"><PluginName>Glow</PluginName>"
         "<PluginID>0000000a-0000-0000-0000-000000000000</PluginID></Instance>",
         "This project uses the Glow plugin but it cannot be found."},
        {"<Instance><PluginID>0000000a-0000-0000-0000-000000000000</PluginID></Instance>",
         "Missing element\nPluginName"},
        {"<Other/><Instance><PluginName/></Instance>", "Missing element\nPluginID"},
        {"<Instance><PluginID/></Instance>", "Cannot construct KyID from string"},
    };
    const Effects before = effects;
    for (const auto &[instance, words] : kCases) {
        Dom dom(("<Root><Effects>" + instance + "</Effects></Root>").c_str());
        EXPECT_THAT([&] { EffectsHelper::DeserializeEffects(&dom.root, effects, manager); },
                    testing::ThrowsMessage<std::exception>(words));
        EXPECT_EQ(effects, before);
    }
}

TEST_F(EffectsHelperTest, TakesPanelStatesOfNamesThatAreThere)
{
    EffectsHelper::UIStates states = {{"hidden", {true}}, {"shown", {false}}, {"bare", {false}},
                                      {"odd", {true}},    {"twice", {true}},  {"absent", {false}}};
    Dom dom("<Root><UIState><Property name='hidden' vis='0'/><Property name='shown' vis='-7'/>"
            "<Property name='bare'/><Property name='odd' vis='yes'/><Property vis='0'/>"
            "<Property name='gone' vis='0'/><Property name='twice'/><Property name='twice' vis='0'/>"
            "</UIState></Root>");
    EffectsHelper::SynchronizeUIState(&dom.root, states);
    EXPECT_EQ(states.size(), 6u);
    for (const char *name : {"hidden", "odd", "twice", "absent"})
        EXPECT_FALSE(states[name].visible) << name;
    for (const char *name : {"shown", "bare"})
        EXPECT_TRUE(states[name].visible) << name;
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
        {"the file knows no path", Point2{}, true, flat, false, Spatial::Spatial2D},
        {"the plug-in knows no path", Point3{}, false, deep, true, Spatial::NotSpatial},
        {"the plug-in lost a dimension", Point2{}, true, deep, true, Spatial::Spatial3D},
        {"the plug-in has a point now", Point2{}, true, numbers, false, Spatial::NotSpatial},
        {"the plug-in has a number now", 1.f, true, deep, true, Spatial::NotSpatial},
        {"not all are points", Point2{}, true, mixed, true, Spatial::NotSpatial},
    };
    const auto create = [](PropertyManager &properties, const PropertyValue &value, bool isSpatial) {
        (properties.*
         (isSpatial ? &PropertyManager::CreateSpatialProperty : &PropertyManager::CreateProperty))(
            "p", value, PropertyManager::Type::Animatable, nullptr);
    };
    for (const auto &c : kCases) {
        plugin->properties.Clear();
        create(plugin->properties, c.ofPlugin, c.isPluginSpatial);
        PropertyManager fromFile;
        create(fromFile, c.inFile[0], c.isFileSpatial);
        for (std::size_t i = 0; i < c.inFile.size(); ++i)
            fromFile.KeyFrames("p").Add(KeyFrame(static_cast<int>(100 * i), c.inFile[i]));

        const auto effect = EffectInstance::Create(plugin);
        EffectsHelper::SynchronizeSourceWithDest(effect->Properties(), fromFile);
        const auto read = EffectInstance::CreateFromXml(plugin, effect->Serialize(), {});
        EXPECT_EQ(effect->Properties().KeyFrames("p").SpatialType(), c.expected) << c.name;
        EXPECT_EQ(effect->Properties().KeyFrames("p").Identifiers(), fromFile.KeyFrames("p").Identifiers());
        for (const int time : {0, 30, 150, 300})
            EXPECT_EQ(read->Properties().ValueAtTime("p", time), effect->Properties().ValueAtTime("p", time))
                << c.name << " at " << time;
    }
}

} // namespace
} // namespace marlet::test
