#include "Loading.h"

#include <marlet/project/ProjectMetadata.h>

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

} // namespace

TEST(ProjectMetadata, InsertsWhatIsAskedForIntoFamiliesOfTheirOwn)
{
    const auto project = Project::Create(nullptr);
    ProjectMetadata &metadata = project->Metadata();
    EXPECT_FALSE(metadata.HasIntegerValue(kOwner, 1));
    EXPECT_EQ(metadata.IntegerValue(kOwner, 1), 0);
    EXPECT_TRUE(metadata.HasIntegerValue(kOwner, 1));
    EXPECT_FALSE(metadata.HasFloatValue(kOwner, 1));

    EXPECT_EQ(metadata.GetOrSetFloatValue(kOwner, 2, 2.5f), 2.5f);
    EXPECT_EQ(metadata.GetOrSetFloatValue(kOwner, 2, 1.5f), 2.5f);
    EXPECT_TRUE(metadata.GetOrSetBooleanValue(kOwner, 2, true));
    EXPECT_EQ(metadata.GetOrSetIntegerValue(kOwner, 2, -7), -7);
    EXPECT_EQ(metadata.GetOrSetKyIDValue(kOwner, 2, kOwner), kOwner);
    EXPECT_EQ(metadata.GetOrSetStringValue(kOwner, 2, u"text"), u"text");
    metadata.RemoveStringValue(kOwner, 2);
    metadata.RemoveStringValue(kOwner, 2);
    EXPECT_FALSE(metadata.HasStringValue(kOwner, 2));
    EXPECT_EQ(metadata.KyIDValue(kOwner, 2), kOwner);
}

TEST(ProjectMetadata, WritesTheKeyOfTheFormat)
{
    const auto project = Project::Create(nullptr);
    project->Metadata().SetIntegerValue(kOwner, 3, -12);
    project->Metadata().SetStringValue(KyID(), 0xffffffffu, u"last");
    const std::string saved = ToUtf8(project->Serialize());
    EXPECT_THAT(saved, HasSubstr("K=\"" + std::to_string(KeyByTheFormat(kOwner, 3)) + "\" V=\"-12\""));
    EXPECT_THAT(saved, HasSubstr("K=\"" + std::to_string(KeyByTheFormat(KyID(), 0) - 1) + "\" V=\"last\""));
}

TEST(ProjectMetadata, ReadsItemsWithoutKnowingTheirOwners)
{
    const auto project = Load(u"<Project Version='0'><ID>" + kOwner.ToWideString() +
                              u"</ID><Name/><Metadata Version='0'>"
                              u"<wstring><Item K='5000000000' V='far'/><Item K='2' V='a'/>"
                              u"<Item K='2' V='b'/><Other K='3'/></wstring>"
                              u"<int32_t><Item K='1'/><Item V='7'/></int32_t>"
                              u"<bool><Item K='1' V='-3'/><Item K='2' V='true'/></bool>"
                              u"</Metadata></Project>");
    const std::string saved = ToUtf8(project->Serialize());
    for (const char *family :
         {"<bool>\n   <Item K=\"1\" V=\"1\"/>\n   <Item K=\"2\" V=\"0\"/>\n  </bool>",
          "<int32_t>\n   <Item K=\"0\" V=\"7\"/>\n   <Item K=\"1\" V=\"0\"/>\n  </int32_t>",
          "<wstring>\n   <Item K=\"2\" V=\"b\"/>\n   <Item K=\"5000000000\" V=\"far\"/>\n  </wstring>"})
        EXPECT_THAT(saved, HasSubstr(family));
}
