// Empty pointers: entries of public lists are passed over, arguments are refused by their names.

#include <tests/support/LayerStage.h>
#include <tests/support/LayerTexts.h>
#include <tests/support/NoPointers.h>
#include <tests/support/TestPlugins.h>
#include <tests/support/Texts.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/ParentHelper.h>
#include <marlet/layers/TransformationHelper.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>

#include <functional>

namespace marlet::test
{
namespace
{

template <class Layer> std::shared_ptr<Layer> Make()
{
    if constexpr (std::is_same_v<Layer, AssetLayer>)
        return AssetLayer::Create(SolidAsset::Create(u"", {}, 100, 100, {}));
    else
        return Layer::Create(u"", 100, 100);
}

template <class Layer> struct NoEntries : testing::Test {
};
using Layers = testing::Types<AssetLayer, GradeLayer, TextLayer>;
TYPED_TEST_SUITE(NoEntries, Layers);

TYPED_TEST(NoEntries, AreNeitherAskedNorCopiedNorSaved)
{
    const auto plugin = std::make_shared<TestPlugin>();
    const auto manager = std::make_shared<TestPluginManager>();
    manager->plugins = {plugin};
    const KyID picked{.Data1 = 1};
    const KyID other{.Data1 = 2};
    const auto layer = Make<TypeParam>();
    Surround(layer->Effects(), EffectInstance::Create(plugin));
    layer->Effects()[1]->Properties().StaticValue("layer") = picked;
    Surround(layer->Masks(), Mask::Create(u""));
    if constexpr (std::is_same_v<TypeParam, AssetLayer>)
        Surround(layer->Trackers(), Tracker::Create(u"", {}, {}, 8, 16));

    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, picked));
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, other));
    EXPECT_EQ(layer->LayerReferencePropertyNames().size(), 1u);
    layer->ChangeLayerReferences({{picked.ToNarrowString(), other.ToNarrowString()}});
    EXPECT_TRUE(layer->IsLayerReferenced(nullptr, other));
    layer->ClearInvalidLayerReferences({});
    EXPECT_FALSE(layer->IsLayerReferenced(nullptr, other));

    const auto clone = std::static_pointer_cast<TypeParam>(layer->Clone({}));
    const auto read = std::static_pointer_cast<TypeParam>(ReadLayer(TextOf(*layer), manager));
    for (const auto &copy : {clone, read}) {
        EXPECT_EQ(copy->Effects().Count(), 1u);
        EXPECT_EQ(copy->Masks().Count(), 1u);
        if constexpr (std::is_same_v<TypeParam, AssetLayer>) {
            EXPECT_EQ(copy->Trackers().Count(), 1u);
            kytl::matl::KyPoint<2, float> offset;
            int width = 0;
            int height = 0;
            AssetLayer::ComputePostFilterDims(SolidAsset::Create(u"", {}, 4, 3, {}), layer->Effects(), 0, 0,
                                              false, offset, width, height);
            EXPECT_EQ(width, 4);
        }
    }
}

/// Everything that takes a composition, a project or another object, with the one that it lacks.
TEST(NoPointers, AreRefusedByTheirNames)
{
    using Effect3D = std::shared_ptr<Abstract3DEffect>;
    const LayerStage stage;
    const std::shared_ptr<Project> noProject;
    const std::shared_ptr<CompositionAsset> noComposition;
    std::shared_ptr<AbstractLayer> noLayer;
    const auto solid = stage.Add(Make<AssetLayer>());
    const auto camera = stage.AddCamera();
    std::shared_ptr<AbstractLayer> point = stage.AddPoint();
    const auto text = TextLayer::Create(u"", 1, 1);
    kytl::matl::KyPoint<2, float> offset;
    int size = 0;
    const struct {
        const char *argument;
        std::function<void()> action;
    } cases[] = {
        {"composition", [&] { point->GlobalFrameToRelativeTime(1, noComposition); }},
        {"composition", [&] { point->LayerFrameToRelativeTime(1, noComposition); }},
        {"project", [&] { point->RelativeTimeToLayerRelativeTime(1, camera, noProject); }},
        {"project", [&] { point->WorldTransformationAtTime(0, noProject, false); }},
        {"project", [&] { point->ParentTransformationAtTime(0, noProject, false); }},
        {"project", [&] { point->ParentingWorldTransformationAtTime(0, noProject, false); }},
        {"project", [&] { point->WorldTransformationAtTimeToSetParent(0, noProject, false); }},
        {"project", [&] { solid->WorldTransformationAtTimeToSetParent(0, noProject, false); }},
        {"project", [&] { solid->TransformationAtTime(0, noProject, false); }},
        {"project", [&] { solid->OriginAtTime(0, noProject); }},
        {"project", [&] { camera->TransformationAtTime(0, noProject, false); }},
        {"project", [&] { point->TransformationAtTime(0, noProject, false); }},
        {"project", [&] { point->OriginAtTime(0, noProject); }},
        {"project", [&] { TransformationHelper::Rotation(point.get(), noProject, 0); }},
        {"project", [&] { TransformationHelper::WorldRotation(point.get(), noProject, 0); }},
        {"project", [&] { TransformationHelper::Scale(point.get(), noProject, 0, false); }},
        {"layer", [&] { TransformationHelper::Rotation(nullptr, stage.project, 0); }},
        {"layer", [&] { TransformationHelper::WorldRotation(nullptr, stage.project, 0); }},
        {"layer", [&] { TransformationHelper::Scale(nullptr, stage.project, 0, false); }},
        {"layer", [&] { ParentHelper::Parent(stage.project, 0, camera, noLayer); }},
        {"layer", [&] { ParentHelper::RemoveParent(stage.project, 0, noLayer); }},
        {"layer", [&] { ParentHelper::UpdatePosition(stage.project, 0, noLayer, camera); }},
        {"project", [&] { ParentHelper::Parent(noProject, 0, camera, point); }},
        {"project", [&] { ParentHelper::RemoveParent(noProject, 0, point); }},
        {"composition",
         [&] {
             Effect3DLayer::Create(Effect3D(new Ball("red", point->ID())), u"")
                 ->IsLayerReferenced(noComposition, camera->ID());
         }},
        {"asset", [] { AssetLayer::Create(nullptr); }},
        {"asset", [&] { AssetLayer::ComputePostFilterDims(nullptr, {}, 0, 0, false, offset, size, size); }},
        {"effect", [] { Effect3DLayer::Create(nullptr, u""); }},
        {"format", [&] { text->GetOrAddFormat(nullptr); }},
        {"token", [&] { text->Text().Append(nullptr); }},
        {"mask", [] { Mask::Copy(nullptr); }},
        {"point", [] { PathPoint::Copy(nullptr); }},
    };
    int number = 0;
    for (const auto &[argument, action] : cases) {
        SCOPED_TRACE(number++);
        EXPECT_TRUE(Refuses(argument, action));
    }
    EXPECT_FALSE(point->HasParentLayer());
    EXPECT_EQ(point->RelativeTimeToLayerRelativeTime(1, nullptr, noProject), 0);
}

} // namespace
} // namespace marlet::test
