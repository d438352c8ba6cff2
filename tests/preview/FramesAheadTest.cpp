#include "preview/FramesAhead.h"

#include "plugins/PluginManager.h"
#include "plugins/Ribbon.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/ProjectFile.h>

#include <gtest/gtest.h>

namespace marlet::tool
{

using namespace project;

/// Masks, effects and maps that change and that do not, still and moving text, and a composition in another.
TEST(FramesAheadTest, DrawsWhatOneRendererDrawsFrameByFrame)
{
    const std::string path = MARLET_EXAMPLES "/titles.xml";
    const ProjectPointer project =
        ProjectFile::Read(ProjectFile::ReadText(path), path, Plugins(), EffectFactory(), {});
    CompositionPointer opening;
    for (const auto &asset : project->Assets().GetByType(AssetType::Composition))
        if (asset->Name() == u"Opening")
            opening = std::dynamic_pointer_cast<CompositionAsset>(asset);
    ASSERT_TRUE(opening);
    // A layer that cannot be drawn is told of once, by whoever meets it first.
    for (const auto &layer : opening->Layers())
        if (layer->Name() == u"Scripts")
            layer->SetParentLayer(kytl::KyID::Generate());
    // So small that it cuts letters, as it opens.
    for (const auto &layer : opening->Layers())
        if (const auto text = std::dynamic_pointer_cast<TextLayer>(layer))
            for (const auto &mask : text->Masks())
                if (mask->Name() == u"Reveal")
                    mask->Animation().StaticValue("expansion") = -150.f;

    // Early on the title's mask opens; later there is a composition in front.
    for (const FramesAhead::Range range : {FramesAhead::Range{0, 5}, FramesAhead::Range{149, 152}}) {
        FramesAhead ahead(
            project, opening, range, QSize(320, 180), [](FramesAhead::Frame &frame) { frame.file = "made"; },
            3);
        for (int frame = range.first; frame <= range.last; ++frame) {
            const FramesAhead::Frame drawn = ahead.Next();
            EXPECT_EQ(drawn.picture, FrameRenderer(project).Render(opening, frame, QSize(320, 180))) << frame;
            EXPECT_EQ(drawn.file, "made");
        }
        ASSERT_EQ(ahead.LeftOut().size(), 1u);
        EXPECT_EQ(ahead.LeftOut()[0].frame, range.first);
    }
}

} // namespace marlet::tool
