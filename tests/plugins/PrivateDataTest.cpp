#include <tests/support/TestPlugins.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/SolidAsset.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

/// What is copied, the instances that it holds, and what copies it.
struct Holder {
    std::shared_ptr<void> owner;
    std::vector<std::shared_ptr<AbstractPluginInstance>> instances;
    std::function<Holder()> copy;
};

template <class Instance> Holder OfInstance(const std::shared_ptr<Instance> &instance)
{
    return {instance, {instance}, [instance] { return OfInstance(Instance::Copy(instance)); }};
}

template <class Owner> std::vector<std::shared_ptr<AbstractPluginInstance>> EffectsOf(const Owner &owner)
{
    return {owner.Effects().begin(), owner.Effects().end()};
}

template <class Object> Holder OfObject(const std::shared_ptr<Object> &object)
{
    Holder holder{object, EffectsOf(*object), [object] { return OfObject(Object::Copy(object, true)); }};
    holder.instances.push_back(object->IncomingTransition());
    holder.instances.push_back(object->OutgoingTransition());
    return holder;
}

template <class Layer> Holder OfLayer(const std::shared_ptr<Layer> &layer)
{
    return {layer, EffectsOf(*layer),
            [layer] { return OfLayer(std::static_pointer_cast<Layer>(layer->Clone({}))); }};
}

Holder OfComposition(const std::shared_ptr<CompositionAsset> &composition)
{
    const auto layer = std::static_pointer_cast<AssetLayer>(composition->Layers().front());
    return {composition, EffectsOf(*layer), [composition] {
                return OfComposition(std::static_pointer_cast<CompositionAsset>(composition->Clone()));
            }};
}

struct PrivateData : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<SolidAsset> solid = SolidAsset::Create(u"", {}, 1, 1, {});

    template <class Owner> std::shared_ptr<Owner> WithEffect(const std::shared_ptr<Owner> &owner) const
    {
        owner->Effects().Add(EffectInstance::Create(plugin));
        return owner;
    }
    template <class Object> Holder MakeObject() const
    {
        const auto object = WithEffect(Object::Create(solid, EditorSequence::Create({}, 1)));
        object->SetIncomingTransition(Transition::Create(plugin));
        object->SetOutgoingTransition(Transition::Create(plugin));
        return OfObject(object);
    }
    Holder MakeComposition() const
    {
        const auto composition = CompositionAsset::Create(u"", {}, 1);
        composition->Layers().Add(WithEffect(AssetLayer::Create(solid)));
        return OfComposition(composition);
    }
};

TEST_F(PrivateData, ComesAlongToEveryCopyAndIsItsOwn)
{
    const std::pair<const char *, std::function<Holder()>> kCases[] = {
        {"effect", [&] { return OfInstance(EffectInstance::Create(plugin)); }},
        {"transition", [&] { return OfInstance(Transition::Create(plugin)); }},
        {"picture", [&] { return MakeObject<VisualObject>(); }},
        {"sound", [&] { return MakeObject<AudioObject>(); }},
        {"asset layer", [&] { return OfLayer(WithEffect(AssetLayer::Create(solid))); }},
        {"grade", [&] { return OfLayer(WithEffect(GradeLayer::Create(u"", 1, 1))); }},
        {"text", [&] { return OfLayer(WithEffect(TextLayer::Create(u"", 1, 1))); }},
        {"composition", [&] { return MakeComposition(); }},
    };
    for (const auto &[name, make] : kCases) {
        SCOPED_TRACE(name);
        {
            const Holder source = make();
            const Holder without = source.copy();
            for (const auto &instance : source.instances)
                TestPlugin::Text(*instance) = "of the source";
            const Holder copy = source.copy();
            const Holder second = copy.copy();
            ASSERT_EQ(second.instances.size(), source.instances.size());
            for (const Holder *holder : {&copy, &second})
                for (const auto &instance : holder->instances)
                    EXPECT_EQ(std::exchange(TestPlugin::Text(*instance), "of the copy"), "of the source");
            for (const auto &instance : source.instances)
                EXPECT_EQ(TestPlugin::Text(*instance), "of the source");
            for (const auto &instance : without.instances)
                EXPECT_EQ(TestPlugin::Text(*instance), "");
        }
        EXPECT_EQ(plugin->living, 0);
    }
}

} // namespace
} // namespace marlet::test
