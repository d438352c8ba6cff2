#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/EffectInstance.h>

#include <QDomDocument>
#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using testing::HasSubstr;

std::string Replaced(std::string text, const std::string &what, const std::string &by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

struct EffectInstanceXmlTest : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<EffectInstance> effect = EffectInstance::Create(plugin);

    EffectInstanceXmlTest()
    {
        effect->SetName(u"Soft & \u00e4");
        effect->SetEnabled(false);
        effect->SetParent(KyID::FromString("0000000a-0000-0000-0000-000000000000"),
                          KyID::FromString("0000000b-0000-0000-0000-000000000000"));
        effect->Properties().StaticValue("amount") = 20.f;
        effect->Properties().KeyFrames("amount").Add(KeyFrame(5, 1.f));
        effect->SetPropertyUIState("smooth", {.visible = true});
        effect->SetPropertyUIState("amount", {.visible = false});
        TestPlugin::Text(*effect) = "bytes";
    }

    std::string Text() const { return ToUtf8(effect->Serialize()); }
    std::shared_ptr<EffectInstance> Read(const std::string &text) const
    {
        return EffectInstance::CreateFromXml(plugin, FromUtf8(text), {});
    }
};

TEST_F(EffectInstanceXmlTest, ReadsNoMoreThanItsVersionHas)
{
    const std::string newest = Text();
    const std::string defaults = Replaced(Replaced(newest, "\"amount\" vis=\"0\"", "\"amount\" vis=\"1\""),
                                          "\"smooth\" vis=\"1\"", "\"smooth\" vis=\"0\"");
    const std::string withoutState = Replaced(Replaced(newest, "<UIState>", "<Was>"), "</UIState>", "</Was>");
    const std::pair<const char *, std::string> kCases[] = {
        {"2", withoutState},
        {"1", newest}, // a version without panel states is not asked for them
        {"0", Replaced(newest, "Ma=\"1\"", "Ma=\"9\"")},
        {"none", newest},
    };
    for (const auto &[version, text] : kCases) {
        const auto read = Read(
            Replaced(text, "Instance Version=\"2\"", std::string("Instance Version=\"") + version + '"'));
        EXPECT_EQ(ToUtf8(read->Serialize()), defaults) << version;
    }
}

TEST_F(EffectInstanceXmlTest, TakesWhatThePluginHasAndTheFileKnows)
{
    const std::string text = Text();
    plugin->properties.Clear();
    plugin->properties.CreateProperty("new", 3, PropertyManager::Type::Animatable, nullptr);
    plugin->properties.CreateProperty("amount", 0, PropertyManager::Type::NotAnimatable, nullptr);
    plugin->version.major = 2;
    const auto read = Read(text);
    EXPECT_THAT(read->Properties().PropertyNames(), testing::ElementsAre("new", "amount"));
    EXPECT_EQ(read->Properties().StaticValue("amount"), PropertyValue(20.f));
    EXPECT_FALSE(read->Properties().CanAnimate("amount"));
    EXPECT_EQ(read->Properties().KeyFrames("amount").Count(), 1u);
}

TEST_F(EffectInstanceXmlTest, FailsInTheOrderOfItsChecks)
{
    // Each fault is added to those before it, and what is checked earlier is what the failure tells of.
    std::string text = Text();
    const struct {
        const char *what;
        const char *by;
        const char *words;
    } kFaults[] = {
        {"Bu=\"4\"", "Bu=\"5\"",
         "The project file was saved with a newer version of the Blur plugin than what is currently loaded."},
        {" Re=\"3\"", "", "PluginVersion is missing attribute Re\n"},
        {"<PluginVersion", "<Was", "Missing element\nPluginVersion"},
        {"<PluginID>", "<PluginID>0000000c-0000-0000-0000-000000000000</PluginID><PluginID>",
         "Supplied plugin does not match deserialized PluginID"},
        {"<Enabled>0</Enabled>", "", "Missing element\nEnabled"},
        {"<PluginID>0000000c-0000-0000-0000-000000000000", "<PluginID>", "Cannot construct KyID from string"},
        {"<Name>Soft &amp; \u00e4</Name>", "", "Missing element\nName"},
        {"Version=\"2\"", "Version=\"3\"",
         "The project file was saved by a newer version of the application than this one."},
        {" Version=\"3\"", "", "Instance is missing attribute Version\n"},
        {"<Instance>", "<Instances>", ""},
        {"</Instance>", "</Instances>", "Wrong tag name\nInstance"},
    };
    for (const auto &fault : kFaults) {
        text = Replaced(text, fault.what, fault.by);
        if (*fault.words != '\0') {
            EXPECT_THAT([&] { Read(text); }, testing::ThrowsMessage<std::exception>(fault.words));
        }
    }
    EXPECT_EQ(plugin->living, 1);
}

TEST_F(EffectInstanceXmlTest, HandsOverWhateverTheBytesDecodeTo)
{
    for (const auto &[attribute, bytes] :
         {std::pair{"Base64=\"Yn\xc3\xa4l0!Z X M\"", "bytes"}, {"Base64=\"====\"", ""}, {"Other=\"\"", ""}}) {
        plugin->calls.clear();
        const auto read = Read(Replaced(Text(), "Base64=\"Ynl0ZXM=\"", attribute));
        EXPECT_EQ(TestPlugin::Text(*read), bytes) << attribute;
        EXPECT_THAT(plugin->calls, testing::Contains("read"));
    }
}

TEST_F(EffectInstanceXmlTest, KeepsWhateverThePluginAppends)
{
    plugin->whenSaved = [](AbstractPluginInstance *, void *document, void *element) {
        auto &dom = *static_cast<QDomDocument *>(document);
        auto &instance = *static_cast<QDomElement *>(element);
        EXPECT_EQ(dom.documentElement(), instance);
        EXPECT_EQ(instance.firstChildElement("Name").text(), QString("Soft & \u00e4"));
        EXPECT_FALSE(instance.firstChildElement("PropertyManager").firstChildElement("amount").isNull());
        EXPECT_EQ(instance.firstChildElement("UIState").elementsByTagName("Property").count(), 2);
        instance.setAttribute("zoom", "<1>");
        instance.setAttribute("angle", 2);
        QDomElement more = dom.createElement("More");
        instance.appendChild(more).appendChild(dom.createTextNode("text"));
        instance.insertBefore(dom.createElement("ID"), instance.firstChild());
        instance.insertAfter(dom.createElement("Between"), instance.firstChildElement("Enabled"));
    };
    const std::string text = Text();
    EXPECT_THAT(text, testing::StartsWith("<Instance Version=\"2\" angle=\"2\" zoom=\"&lt;1>\">\n <ID>"));
    // Behind the library's own, which is read by its names.
    EXPECT_THAT(text, testing::EndsWith(" </UIState>\n"
                                        " <ID/>\n"
                                        " <Between/>\n"
                                        " <InstanceBytes Base64=\"Ynl0ZXM=\"/>\n"
                                        " <More>text</More>\n"
                                        "</Instance>\n"));
    plugin->calls.clear();
    EXPECT_EQ(ToUtf8(Read(text)->Serialize()), text);
    EXPECT_THAT(plugin->calls, testing::ElementsAre("created", "read", "saved", "destroyed"));
}

TEST_F(EffectInstanceXmlTest, KeepsWhatThePluginPutsIntoTheChildrenOfTheLibrary)
{
    const std::string before = Text();
    plugin->whenSaved = [](AbstractPluginInstance *, void *document, void *element) {
        auto &dom = *static_cast<QDomDocument *>(document);
        QDomElement state = static_cast<QDomElement *>(element)->firstChildElement("UIState");
        QDomNode deep = state.insertBefore(dom.createElement("Deep"), state.firstChild());
        for (int i = 0; i < 3; ++i)
            deep = deep.appendChild(dom.createElement("Deeper"));
    };
    const std::string text = Text();
    EXPECT_THAT(
        text,
        HasSubstr(
            "<UIState>\n"
            "  <Deep>\n   <Deeper>\n    <Deeper>\n     <Deeper/>\n    </Deeper>\n   </Deeper>\n  </Deep>\n"
            "  <Property name=\"amount\" vis=\"0\"/>\n"));
    EXPECT_EQ(Text(), text);
    const auto read = Read(text);
    EXPECT_EQ(ToUtf8(read->Serialize()), text);
    plugin->whenSaved = {};
    EXPECT_EQ(ToUtf8(read->Serialize()), before);
}

TEST_F(EffectInstanceXmlTest, FindsTheSameBytesInTheFileAndForACopy)
{
    // Those that come first, wherever they stand.
    plugin->whenSaved = [](AbstractPluginInstance *instance, void *document, void *element) {
        auto &dom = *static_cast<QDomElement *>(element);
        unsigned char first[] = "first";
        QDomElement box = static_cast<QDomDocument *>(document)->createElement("Box");
        instance->SerializeInstanceDataBytes(first, 5, document, &box);
        dom.insertBefore(box.firstChild(), dom.firstChild());
    };
    EXPECT_EQ(TestPlugin::Text(*Read(Text())), "first");
    EXPECT_EQ(TestPlugin::Text(*EffectInstance::Copy(effect)), "first");
}

TEST_F(EffectInstanceXmlTest, WritesNoBytesWhereThereAreNone)
{
    TestPlugin::Text(*effect).clear();
    EXPECT_THAT(Text(), testing::Not(HasSubstr("InstanceBytes")));
    plugin->whenSaved = [](AbstractPluginInstance *instance, void *document, void *element) {
        unsigned char bytes[] = "not these";
        instance->SerializeInstanceDataBytes(bytes, -1, document, element);
    };
    EXPECT_THAT(Text(), HasSubstr("<InstanceBytes Base64=\"\"/>"));
}

} // namespace
} // namespace marlet::test
