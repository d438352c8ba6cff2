#include "Loading.h"

#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace marlet::project;
using kytl::KyID;
using testing::HasSubstr;

namespace
{

const KyID kOwner = KyID::FromString("01234567-89ab-cdef-0123-456789abcdef");

/// The key as the format describes it, step by step.
std::uint32_t KeyByTheFormat(const KyID &id, std::uint32_t index)
{
    std::uint32_t key = id.Data1 + 0x9E3779B9u;
    std::vector<std::uint32_t> rest{id.Data2, id.Data3};
    rest.insert(rest.end(), std::begin(id.Data4), std::end(id.Data4));
    for (std::uint32_t value : rest)
        key ^= value + 0x9E3779B9u + (key << 6) + (key >> 2);
    return key + index;
}

std::string Saved(const Project &project)
{
    return ToUtf8(project.Serialize());
}

} // namespace

TEST(ProjectMetadata, InsertsWhatIsAskedFor)
{
    const auto project = Project::Create(nullptr);
    ProjectMetadata &metadata = project->Metadata();

    EXPECT_FALSE(metadata.HasIntegerValue(kOwner, 1));
    EXPECT_FALSE(metadata.HasIntegerValue(kOwner, 1));
    EXPECT_EQ(metadata.IntegerValue(kOwner, 1), 0);
    EXPECT_TRUE(metadata.HasIntegerValue(kOwner, 1));
    EXPECT_THAT(Saved(*project), HasSubstr("V=\"0\""));
    EXPECT_FALSE(metadata.BooleanValue(kOwner, 1));
    EXPECT_EQ(metadata.FloatValue(kOwner, 1), 0.0f);
    EXPECT_EQ(metadata.KyIDValue(kOwner, 1), KyID());
    EXPECT_EQ(metadata.StringValue(kOwner, 1), u"");

    EXPECT_EQ(metadata.GetOrSetFloatValue(kOwner, 2, 2.5f), 2.5f);
    EXPECT_EQ(metadata.GetOrSetFloatValue(kOwner, 2, 1.5f), 2.5f);
    EXPECT_TRUE(metadata.GetOrSetBooleanValue(kOwner, 2, true));
    EXPECT_EQ(metadata.GetOrSetIntegerValue(kOwner, 2, -7), -7);
    EXPECT_EQ(metadata.GetOrSetKyIDValue(kOwner, 2, kOwner), kOwner);
    EXPECT_EQ(metadata.GetOrSetStringValue(kOwner, 2, u"text"), u"text");
}

TEST(ProjectMetadata, KeepsItsFamiliesApart)
{
    const auto project = Project::Create(nullptr);
    ProjectMetadata &metadata = project->Metadata();
    metadata.SetBooleanValue(kOwner, 0, true);
    metadata.SetIntegerValue(kOwner, 0, 1);
    metadata.SetFloatValue(kOwner, 0, 2);
    metadata.SetKyIDValue(kOwner, 0, kOwner);
    metadata.SetStringValue(kOwner, 0, u"3");

    metadata.RemoveStringValue(kOwner, 0);
    metadata.RemoveStringValue(kOwner, 0);
    EXPECT_FALSE(metadata.HasStringValue(kOwner, 0));
    EXPECT_TRUE(metadata.HasKyIDValue(kOwner, 0));
    metadata.RemoveKyIDValue(kOwner, 0);
    EXPECT_FALSE(metadata.HasKyIDValue(kOwner, 0));
    EXPECT_TRUE(metadata.HasFloatValue(kOwner, 0));
    metadata.RemoveFloatValue(kOwner, 0);
    EXPECT_FALSE(metadata.HasFloatValue(kOwner, 0));
    EXPECT_TRUE(metadata.HasIntegerValue(kOwner, 0));
    metadata.RemoveIntegerValue(kOwner, 0);
    EXPECT_FALSE(metadata.HasIntegerValue(kOwner, 0));
    EXPECT_TRUE(metadata.BooleanValue(kOwner, 0));
    metadata.RemoveBooleanValue(kOwner, 0);
    EXPECT_FALSE(metadata.HasBooleanValue(kOwner, 0));
}

TEST(ProjectMetadata, WritesTheKeyOfTheFormat)
{
    const auto project = Project::Create(nullptr);
    project->Metadata().SetIntegerValue(kOwner, 3, -12);
    project->Metadata().SetStringValue(KyID(), 0xffffffffu, u"last");
    const std::string saved = Saved(*project);
    EXPECT_THAT(saved, HasSubstr("<int32_t>\n   <Item K=\"" + std::to_string(KeyByTheFormat(kOwner, 3)) +
                                 "\" V=\"-12\"/>\n  </int32_t>"));
    EXPECT_THAT(saved, HasSubstr("<wstring>\n   <Item K=\"" + std::to_string(KeyByTheFormat(KyID(), 0) - 1) +
                                 "\" V=\"last\"/>"));
}

TEST(ProjectMetadata, ReadsItemsWithoutKnowingTheirOwners)
{
    const WideString id = kOwner.ToWideString();
    const auto project = Load(u"<Project Version='0'><ID>" + id +
                              u"</ID><Name/><Metadata Version='0'>"
                              u"<wstring><Item K='5000000000' V='far'/><Item K='2' V='a'/>"
                              u"<Item K='2' V='b'/><Other K='3'/></wstring>"
                              u"<int32_t><Item K='1'/><Item V='7'/></int32_t>"
                              u"<bool><Item K='1' V='-3'/><Item K='2' V='true'/></bool>"
                              u"</Metadata></Project>");
    const std::string saved = Saved(*project);
    EXPECT_THAT(saved,
                HasSubstr("<bool>\n   <Item K=\"1\" V=\"1\"/>\n   <Item K=\"2\" V=\"0\"/>\n  </bool>"));
    EXPECT_THAT(saved,
                HasSubstr("<int32_t>\n   <Item K=\"0\" V=\"7\"/>\n   <Item K=\"1\" V=\"0\"/>\n  </int32_t>"));
    EXPECT_THAT(saved, HasSubstr("<wstring>\n   <Item K=\"2\" V=\"b\"/>\n"
                                 "   <Item K=\"5000000000\" V=\"far\"/>\n  </wstring>"));
}

TEST(ProjectSettings, StoreAnyDepth)
{
    const auto project = Project::Create(nullptr);
    EXPECT_EQ(project->Settings().ColorBitDepth(), BPC(1000));
    project->Settings().SetColorBitDepth(BPC(-5));
    EXPECT_EQ(Load(project->Serialize())->Settings().ColorBitDepth(), BPC(-5));
}
