#include "SmallProject.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/SolidAsset.h>

namespace editor
{

using namespace marlet::project;

namespace
{

void Add(const std::shared_ptr<CompositionAsset> &composition, const std::shared_ptr<AbstractLayer> &layer,
         int endFrame)
{
    layer->SetParentComposition(composition);
    layer->SetEndFrame(endFrame);
    composition->Layers().Add(layer);
}

std::shared_ptr<TextLayer> MakeTitle(const WideString &text)
{
    const auto title = TextLayer::Create(u"Title", 800, 120);
    const auto format =
        title->TextFormat(u"DejaVu Sans", u"Book", 80, {1, 1, 1, 1}, {0, 0, 0, 1}, 0.f, 0.f, 0.f);
    for (const char16_t character : text)
        title->Text().Append(TextLayer::CreateCharToken(character, format, {}));
    title->Animation().StaticValue("position") = kytl::matl::KyPoint<3, float>{0, 240, 0};
    return title;
}

} // namespace

std::shared_ptr<Project> MakeSmallProject()
{
    const auto project = Project::Create(nullptr);
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100);
    project->Assets().All().Add(composition);
    Add(composition, MakeTitle(u"A small editor"), 100);

    const auto addSolid = [&](const WideString &name, const kytl::KyColorRGBA_32f &color, int width,
                              int height, int endFrame) {
        const auto solid = SolidAsset::Create(name, color, width, height, PAR::Square);
        const auto layer = AssetLayer::Create(solid);
        project->Assets().All().Add(solid);
        solid->Instances().Add(layer);
        Add(composition, layer, endFrame);
    };
    // The first layer is on top.
    addSolid(u"Card", {1, 0, 0, 1}, 600, 240, 50);
    addSolid(u"Backdrop", {0, 0, 1, 1}, 1280, 720, 100);
    return project;
}

} // namespace editor
