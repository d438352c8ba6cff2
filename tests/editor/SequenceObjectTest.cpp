#include <tests/support/MatrixMatchers.h>
#include <tests/support/NewProperties.h>
#include <tests/support/Setters.h>
#include <tests/support/TestPlugins.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <limits>
#include <numbers>

namespace marlet::test
{
namespace
{

constexpr int kLast = std::numeric_limits<int>::max();
constexpr int kFirst = std::numeric_limits<int>::min();

using Point2 = kytl::matl::KyPoint<2, float>;

template <class Object> struct SequenceObjectTest : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    std::shared_ptr<Project> project = Project::Create(nullptr);
    std::shared_ptr<EditorSequence> sequence = EditorSequence::Create({}, 100);
    std::shared_ptr<SolidAsset> solid = SolidAsset::Create(u"Solid", {}, 1920, 1080, PAR::Square);
    std::shared_ptr<Object> object = Object::Create(solid, sequence);

    SequenceObjectTest()
    {
        manager->plugins = {plugin};
        object->SetName(u"One & only");
        object->SetAssetInstanceStart(10);
        object->SetEndFrame(50);
        object->SetParentTrackID(KyID::Generate());
        object->SetLinkedObjectID(KyID::Generate());
        object->SetSpeed(0.5);
        object->Effects().Add(EffectInstance::Create(plugin));
        object->Effects()[0]->SetParent(object->ID(), sequence->ID());
        object->SetIncomingTransition(Transition::Create(plugin));
        object->SetOutgoingTransition(Transition::Create(plugin));
    }

    std::shared_ptr<Object> Read(const std::string &text) const
    {
        return Object::CreateFromXml(FromUtf8(text), manager);
    }
};

using Objects = testing::Types<VisualObject, AudioObject>;
TYPED_TEST_SUITE(SequenceObjectTest, Objects);

TYPED_TEST(SequenceObjectTest, StartsWithThePropertiesOfItsClass)
{
    using Kinds = std::vector<NewProperty>;
    constexpr bool isSound = std::is_same_v<TypeParam, AudioObject>;
    const Point2 origin{0, 0};
    const Kinds expected = isSound ? Kinds{{"audioLevel", 0.f}, {"speed", 1.0}}
                                   : Kinds{{"opacity", 100.f},
                                           {"anchorPoint", origin},
                                           {"position", origin},
                                           {"scale", Scale3D{100, 100, 100}},
                                           {"scaleLinked", true, kFixed},
                                           {"rotationZ", 0.f},
                                           {"speed", 1.0}};
    const auto fresh = TypeParam::Create(this->solid, this->sequence);
    EXPECT_EQ(PropertiesOf(fresh->Properties()), expected);
    EXPECT_EQ(static_cast<int>(fresh->Type()), isSound ? 1 : 0);
    EXPECT_EQ(static_cast<int>(fresh->AssetInstanceType()), isSound ? 1 : 0);
    EXPECT_EQ(fresh->Name(), u"Solid");
    EXPECT_EQ(fresh->ParentSequenceID(), this->sequence->ID());
    EXPECT_EQ(fresh->AssetID(), this->solid->ID());
}

TYPED_TEST(SequenceObjectTest, KeepsWhatIsSet)
{
    using Object = TypeParam;
    const auto fresh = Object::Create(this->solid, this->sequence);
    const KyID id = KyID::Generate();
    const auto transition = Transition::Create(this->plugin);
    ExpectStored("name", *fresh, &Object::Name, &Object::SetName, WideString(u"Take"));
    ExpectStored("start", *fresh, &Object::AssetInstanceStart, &Object::SetAssetInstanceStart, 5);
    ExpectStored("end", *fresh, &Object::EndFrame, &Object::SetEndFrame, 6);
    ExpectStored("speed", *fresh, &Object::Speed, &Object::SetSpeed, 2.0);
    ExpectStored("track", *fresh, &Object::ParentTrackID, &Object::SetParentTrackID, id);
    ExpectStored("partner", *fresh, &Object::LinkedObjectID, &Object::SetLinkedObjectID, id);
    ExpectStored("in", *fresh, &Object::IncomingTransition, &Object::SetIncomingTransition, transition);
    ExpectStored("out", *fresh, &Object::OutgoingTransition, &Object::SetOutgoingTransition, transition);
    fresh->ClearParentTrackID();
    fresh->ClearLinkedObject();
    fresh->ClearIncomingTransition();
    fresh->ClearOutgoingTransition();
    EXPECT_TRUE(fresh->ParentTrackID().IsNull() && fresh->LinkedObjectID().IsNull());
    EXPECT_FALSE(fresh->IncomingTransition() || fresh->OutgoingTransition());
    if constexpr (std::is_same_v<Object, AudioObject>) {
        ExpectStored("muted", *fresh, &Object::IsMuted, &Object::SetMuted, true);
        ExpectStored("level", *fresh, &Object::Levels, &Object::SetLevels, -6.f);
    } else {
        ExpectStored("opacity", *fresh, &Object::Opacity, &Object::SetOpacity, 25.f);
        ExpectStored("link", *fresh, &Object::IsScaleLinked, &Object::SetScaleLinked, false);
        ExpectStored("x", *fresh, &Object::ScaleX, &Object::SetScaleX, 30.0);
        ExpectStored("y", *fresh, &Object::ScaleY, &Object::SetScaleY, 40.0);
        EXPECT_EQ(fresh->ScaleX(), 30);
    }
}

TYPED_TEST(SequenceObjectTest, CountsFramesUpToTheEndsOfInt)
{
    EXPECT_EQ(TypeParam::Create(this->solid, this->sequence)->AssetInstanceEnd(), -1);
    const struct {
        int assetStart, end, length, assetEnd;
    } kCases[] = {{10, 50, 50, 59},
                  {10, -5, -5, 4},
                  {kLast, kLast, kLast, kLast},
                  {kFirst, kLast, kLast, -2},
                  {kFirst, kFirst, kFirst, kFirst}};
    for (const auto &c : kCases) {
        this->object->SetAssetInstanceStart(c.assetStart);
        this->object->SetEndFrame(c.end);
        EXPECT_EQ(this->object->Length(), c.length);
        EXPECT_EQ(this->object->AssetInstanceEnd(), c.assetEnd);
    }
}

TYPED_TEST(SequenceObjectTest, FindsItsAssetAgainAndKnowsItsTypeMeanwhile)
{
    const auto read = this->Read(ToUtf8(this->object->Serialize()));
    EXPECT_EQ(read->AssetType(), AssetType::Solid);
    EXPECT_EQ(read->Asset(this->project->Assets()), nullptr);
    this->project->Assets().All().Add(this->solid);
    EXPECT_EQ(read->Asset(this->project->Assets()), this->solid);
    this->project->Assets().All().Clear();
    EXPECT_EQ(read->Asset(this->project->Assets()), this->solid);
    EXPECT_THROW(TypeParam::Create(nullptr, this->sequence), std::logic_error);
}

TYPED_TEST(SequenceObjectTest, CopiesOneSidedTransitionsIfAsked)
{
    TypeParam &source = *this->object;
    const KyID neighbour = KyID::Generate();
    const auto copy = TypeParam::Copy(this->object, true);
    EXPECT_NE(copy->ID(), source.ID());
    EXPECT_TRUE(copy->ParentTrackID().IsNull() && copy->LinkedObjectID().IsNull());
    EXPECT_EQ(copy->EndFrame(), 50);
    EXPECT_EQ(copy->Speed(), 0.5);
    EXPECT_NE(&copy->Properties(), &source.Properties());
    ASSERT_EQ(copy->Effects().Count(), 1u);
    EXPECT_NE(copy->Effects()[0], source.Effects()[0]);
    EXPECT_EQ(copy->Effects()[0]->ParentID(), copy->ID());
    EXPECT_EQ(copy->Effects()[0]->ParentTimelineID(), this->sequence->ID());
    EXPECT_NE(copy->IncomingTransition(), source.IncomingTransition());
    EXPECT_EQ(copy->IncomingTransition()->ToObject(), copy->ID());
    EXPECT_EQ(copy->OutgoingTransition()->FromObject(), copy->ID());
    EXPECT_TRUE(source.IncomingTransition()->ToObject().IsNull());

    const auto without = TypeParam::Copy(this->object, false);
    source.IncomingTransition()->SetFromObject(neighbour);
    source.OutgoingTransition()->SetToObject(neighbour);
    const auto shared = TypeParam::Copy(this->object, true);
    for (const auto &bare : {without, shared}) {
        EXPECT_EQ(bare->IncomingTransition(), nullptr);
        EXPECT_EQ(bare->OutgoingTransition(), nullptr);
    }
}

TYPED_TEST(SequenceObjectTest, IsItsOwnTextButForTheTransitions)
{
    // What it shares with the object before stands there.
    this->object->IncomingTransition()->SetFromObject(KyID::Generate());
    this->object->OutgoingTransition()->SetFromObject(this->object->ID());
    const std::string text = ToUtf8(this->object->Serialize());
    EXPECT_THAT(text, testing::HasSubstr("<InTrans ref="));
    EXPECT_THAT(text, testing::HasSubstr("<OutTrans>"));
    const auto read = this->Read(text);
    EXPECT_EQ(read->IncomingTransition(), nullptr);
    EXPECT_EQ(read->OutgoingTransition(), nullptr);
    read->SetIncomingTransition(this->object->IncomingTransition());
    read->SetOutgoingTransition(this->object->OutgoingTransition());
    EXPECT_EQ(ToUtf8(read->Serialize()), text);
    EXPECT_TRUE(TypeParam::CreateFromXml(FromUtf8(text), nullptr)->Effects().IsEmpty());
}

TYPED_TEST(SequenceObjectTest, TellsOfTheFirstPartThatIsMissing)
{
    constexpr bool isSound = std::is_same_v<TypeParam, AudioObject>;
    std::string text = ToUtf8(this->object->Serialize());
    const auto rename = [&text](const std::string &tag) {
        for (const std::string start : {"<", "</"})
            text.replace(text.find(start + tag), start.size() + tag.size(), start + "was" + tag);
    };
    // From the last that is checked to the first: each fault hides those before it.
    const auto properties = isSound
                                ? std::vector<std::string>{"speed", "audioLevel"}
                                : std::vector<std::string>{"speed",    "rotationZ",   "scaleLinked", "scale",
                                                           "position", "anchorPoint", "opacity"};
    for (const std::string &name : properties) {
        rename(name);
        EXPECT_THAT([&] { this->Read(text); },
                    testing::Throws<ProjectException>(testing::AllOf(
                        testing::Property(&ProjectException::Code, ProjectException::kMissingProperty),
                        testing::Property(&ProjectException::Detail, name))));
    }
    this->plugin->version = {};
    EXPECT_THROW(this->Read(text), InvalidPluginVersionException);
    std::vector<std::string> children = {
        "LinkedObjectID", "ParentTrackID", "EndFrame", "StartFrame", "AssetInstanceStart",
        "AssetType",      "AssetID",       "Name",     "SequenceID", "ID"};
    if (isSound)
        children.insert(children.begin() + 2, "Muted");
    for (const std::string &name : children) {
        rename(name);
        EXPECT_THAT([&] { this->Read(text); },
                    testing::ThrowsMessage<XmlParseException>("Missing element\n" + name));
    }
}

using VisualObjectTest = SequenceObjectTest<VisualObject>;

TEST_F(VisualObjectTest, TakesRadiansOrTurnsAndKeepsDegrees)
{
    object->SetRotation(std::numbers::pi_v<float>);
    EXPECT_NEAR(object->Rotation(), 180, 1e-3);
    object->SetRotation(1, 45.0f);
    EXPECT_EQ(object->Rotation(), 405);
    object->SetScaleX(50);
    EXPECT_EQ(object->ScaleY(), 100);
    object->Properties().StaticValue("scale") = 1;
    EXPECT_THROW(object->SetScaleY(1), boost::bad_get);
}

TEST_F(VisualObjectTest, MapsPixelsOfItsAssetIntoTheFrame)
{
    object->SetPosition({300, 200});
    object->SetAnchorPoint({10, 20});
    object->SetScaleX(50);
    object->SetScaleY(200);
    object->SetRotation(0, 90);
    // The middle of the picture lies an anchor point before the position, scaled, then turned against the
    // sign of the angle: (-10, -20) becomes (-5, -40) and that (-40, 5).
    const auto world = object->WorldTransformation(project);
    EXPECT_THAT(world.TransformPoint({960, 540, 0}), IsPointNear(260, 205, 0, 1e-3));
    EXPECT_THAT(world.TransformPoint({962, 540, 0}), IsPointNear(260, 204, 0, 1e-3));

    solid->SetPixelAspectRatio(PAR::NtscWide);
    EXPECT_THAT(object->OriginTransformation(project).TransformPoint({0, 0, 0}),
                IsPointNear(-10 - 960 * 40 / 33.0, -560, 0, 1e-3));
}

TEST_F(VisualObjectTest, PlacesWhatIsOfflineByItsPosition)
{
    const auto image = ImageAsset::Create(u"/nowhere/at/all.png");
    const auto offline = VisualObject::Create(image, sequence);
    offline->SetPosition({300, 200});
    offline->SetAnchorPoint({10, 20});
    EXPECT_THAT(offline->OriginTransformation(project).TransformPoint({0, 0, 0}),
                IsPointNear(150, 50, 0, 1e-3));
    const auto lost = VisualObject::Create(ImageAsset::Copy(image), sequence);
    EXPECT_THROW(lost->OriginTransformation(project), std::logic_error);
}

TEST(AudioObject, NamesTheAssetThatItAsksForInVain)
{
    const auto solid = SolidAsset::Create(u"Solid", {}, 1, 1, PAR::Square);
    const auto text = AudioObject::Create(solid, EditorSequence::Create({}, 1))->Serialize();
    EXPECT_THAT(
        [&] {
            AudioObject::CreateFromXml(text, nullptr)->AudioFrameRate(Project::Create(nullptr)->Assets());
        },
        testing::ThrowsMessage<std::logic_error>(testing::HasSubstr(solid->ID().ToNarrowString())));
}

} // namespace
} // namespace marlet::test
