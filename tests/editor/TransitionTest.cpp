#include <tests/support/TestPlugins.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/plugins/EffectsHelper.h>
#include <marlet/project/SolidAsset.h>

#include <QDomDocument>
#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

const KyID kBefore = KyID::FromString("0000000a-0000-0000-0000-000000000000");
const KyID kAfter = KyID::FromString("0000000b-0000-0000-0000-000000000000");

struct TransitionTest : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    std::shared_ptr<Transition> transition = Transition::Create(plugin);

    TransitionTest()
    {
        manager->plugins = {plugin};
        transition->SetFromObject(kBefore);
        transition->SetToObject(kAfter);
        transition->SetLength(24);
        transition->SetRelativeStartFrame(-12);
        TestPlugin::Text(*transition) = "bytes";
    }
};

TEST_F(TransitionTest, SharesItsPropertiesButNotItsDataWithACopy)
{
    int hostData = 0;
    transition->SetHostInstanceData(&hostData);
    transition->SetPropertyUIState("amount", {.visible = false});
    plugin->calls.clear();
    plugin->whenCreated = [&](AbstractPluginInstance *copy) {
        EXPECT_EQ(copy->ID(), transition->ID());
        EXPECT_EQ(copy->InstanceData(), transition->InstanceData());
    };
    const auto copy = Transition::Copy(transition);
    EXPECT_THAT(plugin->calls, ElementsAre("created", "saved", "read"));
    EXPECT_NE(copy->ID(), transition->ID());
    EXPECT_TRUE(copy->FromObject().IsNull() && copy->ToObject().IsNull());
    EXPECT_EQ(copy->Length(), 24);
    EXPECT_EQ(copy->RelativeStartFrame(), -12);
    EXPECT_EQ(&copy->Properties(), &transition->Properties());
    EXPECT_FALSE(copy->PropertyUIState("amount").visible);
    EXPECT_EQ(copy->HostInstanceData(), nullptr);
    EXPECT_NE(copy->InstanceData(), transition->InstanceData());
    EXPECT_EQ(TestPlugin::Text(*copy), "bytes");

    // What the plug-in set when it heard of the copy does not count.
    NarrowString ofCopy;
    TestPlugin::Text(*transition).clear();
    plugin->dataOfNew = &ofCopy;
    EXPECT_EQ(Transition::Copy(transition)->InstanceData(), nullptr);
}

TEST(Transition, OutlivesItsPlugin)
{
    const auto transition = Transition::Create(std::make_shared<TestPlugin>());
    EXPECT_EQ(Transition::Copy(transition), nullptr);
    EXPECT_THROW(static_cast<void>(transition->Serialize()), std::logic_error);
}

/// The slots of objects in Qt's DOM, in which every case has a root of its own.
struct TransitionSlots : TransitionTest {
    QDomDocument document;
    QDomElement root = document.createElement("Root");

    TransitionSlots() { document.appendChild(root); }

    std::string Written(const std::shared_ptr<Transition> &written, bool allowReference)
    {
        root = document.createElement("Root");
        EffectsHelper::SerializeTransition(&document, &root, "InTrans", written, allowReference);
        return ToUtf8(XmlFromDom(&root));
    }

    std::shared_ptr<Transition> Read(SequenceObjectList *objects,
                                     const std::shared_ptr<AbstractPluginManager> &plugins)
    {
        std::shared_ptr<Transition> read = transition;
        EffectsHelper::DeserializeTransition(&root, "InTrans", plugins, read, objects);
        return read;
    }
};

TEST_F(TransitionSlots, HoldAReferenceOnlyToOneOfAnObjectBefore)
{
    EXPECT_EQ(Written(nullptr, true), "<Root/>\n");
    EXPECT_EQ(Written(transition, true),
              "<Root>\n <InTrans fromObjectID=\"0000000a-0000-0000-0000-000000000000\" ref=\"1\" transID=\"" +
                  transition->ID().ToNarrowString() + "\"/>\n</Root>\n");
    EXPECT_THAT(Written(transition, false), HasSubstr("<InTrans>\n  <Transition Version=\"2\">"));
    transition->ClearFromObject();
    EXPECT_THAT(Written(transition, true), HasSubstr("<InTrans>\n  <Transition Version=\"2\">"));
    EXPECT_EQ(Read(nullptr, nullptr), nullptr);
    const auto read = Read(nullptr, manager);
    EXPECT_NE(read, transition);
    EXPECT_EQ(read->Serialize(), transition->Serialize());

    manager->plugins.clear();
    EXPECT_THAT([&] { Read(nullptr, manager); },
                testing::ThrowsMessage<MissingPluginException>(
                    "This project uses the Blur plugin but it cannot be found."));
}

TEST_F(TransitionSlots, ReferToWhatTheObjectOfTheSameTrackHolds)
{
    const auto sequence = EditorSequence::Create({}, 100);
    const auto track = VideoTrack::Create(sequence, u"V");
    const auto other = VideoTrack::Create(sequence, u"W");
    const auto object = VisualObject::Create(SolidAsset::Create(u"", {}, 1, 1, {}), sequence);
    object->SetParentTrackID(track->ID());
    object->SetOutgoingTransition(transition);
    track->Objects().Insert(object, 0);
    transition->SetFromObject(object->ID());
    Written(transition, true);
    EXPECT_EQ(Read(&track->Objects(), manager), transition);
    EXPECT_EQ(Read(&other->Objects(), manager), nullptr);
    EXPECT_EQ(Read(&track->Objects(), nullptr), nullptr);

    QDomElement slot = root.firstChildElement();
    slot.setAttribute("transID", KyID().ToNarrowString().c_str());
    EXPECT_EQ(Read(&track->Objects(), manager), transition);
    slot.setAttribute("transID", "none");
    EXPECT_THROW(Read(&track->Objects(), manager), std::runtime_error);
    slot.removeAttribute("fromObjectID");
    EXPECT_THROW(Read(&track->Objects(), manager), XmlParseException);
}

} // namespace
} // namespace marlet::test
