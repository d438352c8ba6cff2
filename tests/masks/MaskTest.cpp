#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/Setters.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>

#include <gmock/gmock.h>

namespace
{

using namespace marlet::project;
using kytl::KyID;

const KyID kLayer = KyID::FromString("0000000a-0000-0000-0000-000000000000");

std::string Text(const Mask &mask)
{
    return ToUtf8(mask.Serialize());
}

/// The text with another one from a first to a last word, both included.
std::string Replaced(std::string text, const std::string &first, const std::string &last,
                     const std::string &by)
{
    const std::size_t from = text.find(first);
    const std::size_t to = text.find(last, from);
    EXPECT_NE(from, std::string::npos) << first;
    EXPECT_NE(to, std::string::npos) << last;
    return text.replace(from, to + last.size() - from, by);
}

std::shared_ptr<Mask> OddMask()
{
    auto mask = Mask::Create(u"Shape & \u00e4");
    mask->SetVisible(false);
    mask->SetParentLayerID(kLayer);
    mask->SetBlendMode(MaskBlend{-3});
    mask->SetFeatherMode(MaskFeather{70});
    mask->SetInverted(true);
    mask->Animation().KeyFrames("opacity").Add(KeyFrame(5, 50.f));
    for (const float x : {0.f, 10.f, 20.f})
        mask->Path().Points().Add(PathPoint::Create(x, 1, mask->Path().ID()));
    mask->Path().SetClosed(true);
    return mask;
}

TEST(Mask, StartsVisibleWithAnOpenPathOfItsOwn)
{
    const auto mask = Mask::Create(u"New");
    EXPECT_TRUE(mask->IsVisible() && !mask->IsInverted() && mask->ParentLayerID().IsNull());
    EXPECT_EQ(std::pair(mask->BlendMode(), mask->FeatherMode()), std::pair(MaskBlend{2}, MaskFeather{2}));
    EXPECT_EQ(mask->Path().ParentID(), mask->ID());
    EXPECT_TRUE(mask->Path().Points().IsEmpty() && !mask->Path().IsClosed());
    using marlet::test::ExpectStored;
    ExpectStored("name", *mask, &Mask::Name, &Mask::SetName, WideString(u"Old"));
    ExpectStored("visible", *mask, &Mask::IsVisible, &Mask::SetVisible, false);
    ExpectStored("layer", *mask, &Mask::ParentLayerID, &Mask::SetParentLayerID, kLayer);
    ExpectStored("inverted", *mask, &Mask::IsInverted, &Mask::SetInverted, true);
    mask->ClearParentLayerID();
    EXPECT_TRUE(mask->ParentLayerID().IsNull());
}

TEST(Mask, KeepsItsModesInProperties)
{
    const auto mask = OddMask();
    EXPECT_EQ(mask->Animation().StaticValue("blendMode"), PropertyValue(-3));
    EXPECT_EQ(mask->Animation().StaticValue("featherMode"), PropertyValue(70));
    EXPECT_EQ(mask->Animation().StaticValue("inverted"), PropertyValue(true));
    mask->Animation().StaticValue("blendMode") = 1.5f;
    EXPECT_THROW(mask->BlendMode(), boost::bad_get);
    mask->SetBlendMode(MaskBlend{4});
    EXPECT_EQ(mask->BlendMode(), MaskBlend{4});
}

TEST(Mask, CopiesWithNewIDsOnTheSameLayer)
{
    const auto mask = OddMask();
    const auto copy = Mask::Copy(mask);
    EXPECT_NE(copy->ID(), mask->ID());
    EXPECT_FALSE(copy->IsVisible());
    EXPECT_EQ(copy->ParentLayerID(), kLayer);
    EXPECT_EQ(copy->Path().ParentID(), copy->ID());
    ASSERT_EQ(copy->Path().Points().Count(), 3u);
    EXPECT_NE(copy->Path().Points()[0], mask->Path().Points()[0]);
    EXPECT_EQ(copy->Animation().Serialize(), mask->Animation().Serialize());
    EXPECT_NE(copy->Animation().KeyFrames("opacity").Identifiers(),
              mask->Animation().KeyFrames("opacity").Identifiers());
}

TEST(Mask, ReadsWhatItWrote)
{
    const std::string text = Text(*OddMask());
    EXPECT_EQ(Text(*Mask::CreateFromXml(FromUtf8(text))), text);
    const auto other = Mask::Create(u"Other");
    other->Animation().CreateProperty("more", 1, PropertyManager::Type::Animatable, nullptr);
    other->Deserialize(FromUtf8(text));
    EXPECT_EQ(Text(*other), text);
}

TEST(Mask, KeepsItsPathWhenTheTextHasNone)
{
    const std::string text = Replaced(Text(*OddMask()), "<MotionPath", "</MotionPath>", "");
    EXPECT_TRUE(Mask::CreateFromXml(FromUtf8(text))->Path().Points().IsEmpty());
    const auto mask = OddMask();
    mask->Deserialize(FromUtf8(text));
    EXPECT_EQ(mask->Path().Points().Count(), 3u);
}

TEST(Mask, FailsWithTheWordsForWhatIsMissing)
{
    const std::string text = Text(*OddMask());
    const struct {
        const char *first;
        const char *last;
        const char *by;
        const char *words;
    } kCases[] = {
        {"<Mask", "<Mask", "<Masks", "Wrong tag name\nMask"},
        {" Version", "\"0\"", "", "Mask is missing attribute Version\n"},
        {"Version", "\"0\"", "Version=\"1\"",
         "The project file was saved by a newer version of the application than this one."},
        {"<ID>", "</ID>", "", "Missing element\nID"},
        {"<LayerID>", "</LayerID>", "", "Missing element\nLayerID"},
        {"<MotionPath", "\"0\"", "<MotionPath", "MotionPath is missing attribute Version\n"},
    };
    for (const auto &c : kCases) {
        EXPECT_THAT([&] { Mask::CreateFromXml(FromUtf8(Replaced(text, c.first, c.last, c.by))); },
                    testing::ThrowsMessage<std::exception>(c.words));
    }
}

TEST(Mask, NamesTheFirstPropertyThatItLacks)
{
    std::string text = Text(*OddMask());
    // From the last one to the first, each time the one that was taken away just now is the first.
    for (const char *name : {"motionPath", "blendMode", "inverted", "featherMode", "roundness", "feather",
                             "expansion", "opacity"}) {
        text = Replaced(text, std::string("  <") + name + " ", std::string("</") + name + ">", "");
        EXPECT_THAT([&] { Mask::CreateFromXml(FromUtf8(text)); },
                    testing::Throws<ProjectException>(testing::Property(&ProjectException::Detail, name)));
    }
}

} // namespace
