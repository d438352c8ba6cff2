#include "Loading.h"

#include <tests/support/Ball.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/ProjectTextureImageCache.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

using namespace marlet::project;

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

} // namespace

TEST(Project, KnowsItsTexturesFolderBeforeAnythingIsRead)
{
    struct NotingFactory : marlet::test::BallFactory {
        std::shared_ptr<Abstract3DEffect> Create(void *element,
                                                 ProjectTextureImageCache &textures) const override
        {
            folder = textures.TexturesFolderPath();
            return BallFactory::Create(element, textures);
        }
        mutable WideString folder;
    };
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"", AudioVideoSettings::Preset::Pal, 1);
    composition->Layers().Add(Effect3DLayer::Create(std::make_shared<marlet::test::PlainBall>("red"), u""));
    project->Assets().All().Add(composition);
    const NotingFactory factory;
    Project::CreateFromXml(project->Serialize(), u"/textures/", nullptr, factory);
    EXPECT_EQ(factory.folder, u"/textures/");
}

TEST(Project, IsAttachedToItsManagerOnceItIsComplete)
{
    const auto manager = std::make_shared<NotingManager>();
    const auto created = Project::Create(manager);
    EXPECT_EQ(manager->attached, created);
    EXPECT_EQ(created->PluginManager(), manager);

    created->SetFilename(u"/secret/place.xml");
    created->Assets().All().Add(SolidAsset::Create(u"", {}, 1, 1, PAR::Square));
    const auto loaded = Project::CreateFromXml(created->Serialize(), u"/textures/", manager, NoEffects());
    EXPECT_EQ(manager->attached, loaded);
    EXPECT_EQ(manager->assetCount, 1u);
    EXPECT_EQ(loaded->TextureImageCache().TexturesFolderPath(), u"/textures/");
    EXPECT_EQ(loaded->Filename(), u"");

    manager->attached = nullptr;
    EXPECT_THROW(Project::CreateFromXml(u"", u"", manager, NoEffects()), XmlParseException);
    created->SetPluginManager(manager);
    EXPECT_EQ(manager->attached, nullptr);
}
