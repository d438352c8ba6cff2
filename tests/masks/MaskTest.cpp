#include <tests/support/PropertyValuePrinter.h>

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

TEST(Mask, StartsOpaqueSharpAndVisible)
{
    const auto mask = Mask::Create(u"Mask");
    EXPECT_EQ(mask->Name(), u"Mask");
    EXPECT_FALSE(mask->ID().IsNull());
    EXPECT_TRUE(mask->IsVisible());
    EXPECT_TRUE(mask->ParentLayerID().IsNull());
    EXPECT_EQ(mask->Path().ParentID(), mask->ID());
    EXPECT_EQ(mask->BlendMode(), MaskBlend{2});
    EXPECT_EQ(mask->FeatherMode(), MaskFeather{2});
    EXPECT_FALSE(mask->IsInverted());

    const struct {
        const char *name;
        PropertyValue value;
        bool canAnimate;
    } kProperties[] = {{"opacity", 100.f, true}, {"expansion", 0.f, true},  {"feather", 0.f, true},
                       {"roundness", 0.f, true}, {"featherMode", 2, false}, {"inverted", false, false},
                       {"blendMode", 2, false},  {"motionPath", true, true}};
    const PropertyManager &properties = mask->Animation();
    EXPECT_EQ(properties.PropertyCount(), std::size(kProperties));
    for (const auto &property : kProperties) {
        EXPECT_EQ(properties.StaticValue(property.name), property.value) << property.name;
        EXPECT_EQ(properties.CanAnimate(property.name), property.canAnimate) << property.name;
        EXPECT_FALSE(properties.IsSpatial(property.name)) << property.name;
    }
}

TEST(Mask, KeepsItsModesInProperties)
{
    const auto mask = OddMask();
    EXPECT_EQ(mask->Animation().StaticValue("blendMode"), PropertyValue(-3));
    EXPECT_EQ(mask->Animation().StaticValue("featherMode"), PropertyValue(70));
    EXPECT_EQ(mask->Animation().StaticValue("inverted"), PropertyValue(true));
    for (const char *name : {"blendMode", "featherMode", "inverted"})
        mask->Animation().StaticValue(name) = 1.5f;
    EXPECT_THROW(mask->BlendMode(), boost::bad_get);
    EXPECT_THROW(mask->FeatherMode(), boost::bad_get);
    EXPECT_THROW(mask->IsInverted(), boost::bad_get);
    mask->SetBlendMode(MaskBlend{4});
    mask->SetFeatherMode(MaskFeather{5});
    mask->SetInverted(true);
    EXPECT_EQ(mask->BlendMode(), MaskBlend{4});
    EXPECT_EQ(mask->FeatherMode(), MaskFeather{5});
    EXPECT_TRUE(mask->IsInverted());
}

TEST(Mask, CopiesWithNewIDsOnTheSameLayer)
{
    const auto mask = OddMask();
    const auto copy = Mask::Copy(mask);
    EXPECT_NE(copy->ID(), mask->ID());
    EXPECT_EQ(copy->Name(), mask->Name());
    EXPECT_FALSE(copy->IsVisible());
    EXPECT_EQ(copy->ParentLayerID(), kLayer);
    EXPECT_NE(copy->Path().ID(), mask->Path().ID());
    EXPECT_EQ(copy->Path().ParentID(), copy->ID());
    ASSERT_EQ(copy->Path().Points().Count(), 3u);
    EXPECT_NE(copy->Path().Points()[0]->ID(), mask->Path().Points()[0]->ID());
    EXPECT_EQ(copy->Path().Points()[0]->ParentPathID(), copy->Path().ID());
    EXPECT_TRUE(copy->Path().IsClosed());
    EXPECT_EQ(copy->Animation().Serialize(), mask->Animation().Serialize());
    EXPECT_NE(copy->Animation().KeyFrames("opacity").Identifiers(),
              mask->Animation().KeyFrames("opacity").Identifiers());
    copy->SetBlendMode(MaskBlend{9});
    copy->ClearParentLayerID();
    EXPECT_EQ(mask->BlendMode(), MaskBlend{-3});
    EXPECT_TRUE(copy->ParentLayerID().IsNull());
}

TEST(Mask, WritesChildrenInAFixedOrder)
{
    const auto mask = OddMask();
    EXPECT_THAT(Text(*mask), testing::StartsWith("<Mask Version=\"0\">\n"
                                                 " <ID>" +
                                                 mask->ID().ToNarrowString() +
                                                 "</ID>\n"
                                                 " <Name>Shape &amp; \u00e4</Name>\n"
                                                 " <Visible>0</Visible>\n"
                                                 " <LayerID>0000000a-0000-0000-0000-000000000000</LayerID>\n"
                                                 " <MotionPath Version=\"0\">\n"));
    EXPECT_THAT(Text(*mask), testing::HasSubstr("\n </MotionPath>\n <PropertyManager Version=\"0\">\n"));
}

TEST(Mask, ReadsWhatItWrote)
{
    const std::string text = Text(*OddMask());
    const auto read = Mask::CreateFromXml(FromUtf8(text));
    EXPECT_EQ(Text(*read), text);
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
        {"<Name>", "</Name>", "", "Missing element\nName"},
        {"<Visible>", "</Visible>", "", "Missing element\nVisible"},
        {"<LayerID>", "</LayerID>", "", "Missing element\nLayerID"},
        {"<MotionPath", "\"0\"", "<MotionPath", "MotionPath is missing attribute Version\n"},
    };
    for (const auto &c : kCases) {
        std::string words;
        try {
            Mask::CreateFromXml(FromUtf8(Replaced(text, c.first, c.last, c.by)));
        } catch (const std::exception &e) {
            words = e.what();
        }
        EXPECT_EQ(words, c.words);
    }
}

TEST(Mask, NamesTheFirstPropertyThatItLacks)
{
    std::string text = Text(*OddMask());
    const std::size_t managerOfMask = text.rfind("<PropertyManager");
    std::string properties = text.substr(managerOfMask);
    text.resize(managerOfMask);
    const auto missing = [](const std::string &changed) {
        try {
            Mask::CreateFromXml(FromUtf8(changed));
        } catch (const ProjectException &e) {
            EXPECT_EQ(e.Code(), 9);
            return e.Detail();
        }
        return NarrowString();
    };
    EXPECT_EQ(missing(text + "</Mask>"), "opacity");
    // From the last one to the first, each time the one that was taken away just now is the first.
    for (const char *name : {"motionPath", "blendMode", "inverted", "featherMode", "roundness", "feather",
                             "expansion", "opacity"}) {
        properties = Replaced(properties, std::string("<") + name + " ", std::string("</") + name + ">", "");
        EXPECT_EQ(missing(text + properties), name);
    }
}

} // namespace
