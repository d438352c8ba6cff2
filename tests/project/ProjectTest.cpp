#include "Loading.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/BinFolder.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/SolidAsset.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace marlet::project;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// Notes what there is of a project when it is attached.
struct NotingManager : AbstractPluginManager {
    void HostOperation1() override {}
    void AttachProject(const std::shared_ptr<Project> &project) override
    {
        attached = project;
        assetCount = project->Assets().All().Count();
    }
    void HostOperation2() override {}
    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &) override { return nullptr; }
    void HostOperation3() override {}

    std::shared_ptr<Project> attached;
    unsigned int assetCount = 0;
};

std::string ID(const kytl::KyID &id)
{
    return id.ToNarrowString();
}

} // namespace

TEST(Project, WritesItsDefaultsWhenItIsNew)
{
    const auto project = Project::Create(nullptr);
    const BinFolder &bin = project->Assets().Bin();
    const std::string expected = "<Project Version=\"0\">\n"
                                 " <ID>" +
                                 ID(project->ID()) +
                                 "</ID>\n"
                                 " <Name></Name>\n"
                                 " <ProjectSettings Version=\"0\">\n"
                                 "  <BPC>1000</BPC>\n"
                                 " </ProjectSettings>\n"
                                 " <AssetList Version=\"0\">\n"
                                 "  <Assets/>\n"
                                 "  <BinFolder Version=\"0\">\n"
                                 "   <ID>" +
                                 ID(bin.ID()) +
                                 "</ID>\n"
                                 "   <IsExpanded>0</IsExpanded>\n"
                                 "   <Name>Root</Name>\n"
                                 "   <ParentFolderID>00000000-0000-0000-0000-000000000000</ParentFolderID>\n"
                                 "   <Assets/>\n"
                                 "   <SubFolders/>\n"
                                 "  </BinFolder>\n"
                                 " </AssetList>\n"
                                 " <Metadata Version=\"0\">\n"
                                 "  <bool/>\n"
                                 "  <int32_t/>\n"
                                 "  <float/>\n"
                                 "  <KyID/>\n"
                                 "  <wstring/>\n"
                                 " </Metadata>\n"
                                 "</Project>\n";
    EXPECT_EQ(ToUtf8(project->Serialize()), expected);
    EXPECT_FALSE(project->ID().IsNull());
    EXPECT_FALSE(bin.ID().IsNull());
}

TEST(Project, KeepsItsFileNameOutOfTheText)
{
    const auto project = Project::Create(nullptr);
    project->SetName(u"Shown");
    project->SetFilename(u"/secret/place.xml");
    EXPECT_THAT(ToUtf8(project->Serialize()), Not(HasSubstr("secret")));

    const auto loaded = Load(project->Serialize());
    EXPECT_EQ(loaded->Name(), u"Shown");
    EXPECT_EQ(loaded->Filename(), u"");
    EXPECT_EQ(loaded->ID(), project->ID());
}

TEST(Project, IsAttachedToItsManagerOnceItIsComplete)
{
    const auto manager = std::make_shared<NotingManager>();
    const auto created = Project::Create(manager);
    EXPECT_EQ(manager->attached, created);
    EXPECT_EQ(created->PluginManager(), manager);

    created->Assets().All().Add(SolidAsset::Create(u"", {}, 1, 1, PAR::Square));
    const auto loaded = Project::CreateFromXml(created->Serialize(), u"/textures/", manager, NoEffects());
    EXPECT_EQ(manager->attached, loaded);
    EXPECT_EQ(manager->assetCount, 1u);
    EXPECT_EQ(loaded->TextureImageCache().TexturesFolderPath(), u"/textures/");

    manager->attached = nullptr;
    EXPECT_THROW(Project::CreateFromXml(u"", u"", manager, NoEffects()), XmlParseException);
    created->SetPluginManager(manager);
    EXPECT_EQ(manager->attached, nullptr);
}
