// Random changes of a project that uses everything: what is found to differ makes the one text and the one
// project into the other.

#include <tests/checks/CheckedProject.h>

#include <marlet/animation/KeyFrameList.h>
#include <marlet/compare/Apply.h>
#include <marlet/compare/Compare.h>
#include <marlet/history/EditHistory.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectMetadata.h>
#include <marlet/project/ProjectSettings.h>

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace marlet::test
{

namespace
{

struct NoEffects : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
    {
        return nullptr;
    }
};

/// A project as it was read, with what the changes below are about. Of what a change before has removed there
/// may be none.
struct World {
    World(const CheckedProject &like, const std::shared_ptr<Project> &of, unsigned int seed)
        : checked(like), project(of), random(seed)
    {
    }

    int Number(int below) { return static_cast<int>(random() % static_cast<unsigned int>(below)); }
    WideString Name() { return u"Name " + FromUtf8(std::to_string(Number(1000))); }

    std::shared_ptr<CompositionAsset> Main() const
    {
        return std::dynamic_pointer_cast<CompositionAsset>(project->Assets().All()[0]);
    }
    std::shared_ptr<AbstractAsset> Solid() const { return project->Assets().All()[2]; }
    template <class Layer> std::shared_ptr<Layer> Find() const
    {
        for (const auto &layer : Main()->Layers())
            if (auto found = std::dynamic_pointer_cast<Layer>(layer))
                return found;
        return nullptr;
    }
    std::shared_ptr<AbstractLayer> AnyLayer()
    {
        auto layer = Main()->Layers().begin();
        std::advance(layer, Number(static_cast<int>(Main()->Layers().size())));
        return *layer;
    }
    VideoTrack &Track() const { return *project->Sequence()->VideoTracks()[0]; }
    std::shared_ptr<AbstractSequenceObject> AnyObject()
    {
        const unsigned int count = Track().Objects().Count();
        return count == 0 ? nullptr
                          : Track().Objects()[static_cast<unsigned int>(Number(static_cast<int>(count)))];
    }

    const CheckedProject &checked; ///< whose plug-in the project uses
    std::shared_ptr<Project> project;
    std::mt19937 random;
};

struct NamedChange {
    const char *name;
    void (*change)(World &world);
};

const NamedChange kChanges[] = {
    {"names and depth",
     [](World &world) {
         world.project->SetName(world.Name());
         world.project->Settings().SetColorBitDepth(BPC{world.Number(3)});
         world.Solid()->SetName(u" <&> \"\n\t");
     }},
    {"metadata",
     [](World &world) {
         ProjectMetadata &metadata = world.project->Metadata();
         metadata.SetStringValue({}, static_cast<unsigned int>(world.Number(5)), world.Name());
         metadata.SetIntegerValue({}, static_cast<unsigned int>(world.Number(5)), world.Number(9));
         metadata.RemoveIntegerValue({}, static_cast<unsigned int>(world.Number(5)));
     }},
    {"fields of a layer",
     [](World &world) {
         const auto layer = world.AnyLayer();
         layer->SetStartFrame(world.Number(50));
         layer->SetEndFrame(world.Number(50));
         layer->SetVisible(world.Number(2) == 0);
         layer->SetParentLayer(world.AnyLayer()->ID());
     }},
    {"properties",
     [](World &world) {
         const auto layer = world.Find<PointLayer>();
         if (!layer)
             return;
         PropertyManager &properties = layer->Animation();
         properties.StaticValue("rotationX") = static_cast<float>(world.Number(360)) + 0.1F;
         properties.Expression("rotationY") = "time * " + std::to_string(world.Number(9));
         KeyFrameList &keys = properties.KeyFrames("rotationZ");
         for (int i = 0; i < 4; ++i)
             keys.Set(100 * world.Number(8), static_cast<float>(world.Number(9)));
         keys.Add(KeyFrame(keys.FirstByTime().Time(), 1.F));
         keys.Remove(
             keys.Identifiers()[static_cast<std::size_t>(world.Number(static_cast<int>(keys.Count())))]);
     }},
    {"a property of its own",
     [](World &world) {
         world.AnyLayer()->Animation().CreateProperty(("own" + std::to_string(world.Number(100))).c_str(), 1,
                                                      PropertyManager::Type::Animatable, nullptr);
     }},
    {"layers come, go and move",
     [](World &world) {
         CompositionAsset::LayerList &layers = world.Main()->Layers();
         const auto camera = CameraLayer::Create(world.Name(), 1, 2, 3, 4);
         camera->SetParentComposition(world.Main());
         layers.push_front(camera);
         layers.push_back(world.AnyLayer()->Clone(world.Main()->ID()));
         layers.splice(layers.end(), layers, std::next(layers.begin()));
         if (layers.size() > 5)
             layers.erase(std::next(layers.begin(), world.Number(4)));
     }},
    {"effects",
     [](World &world) {
         const auto layer = world.Find<AssetLayer>();
         if (!layer)
             return;
         if (!layer->Effects().empty()) {
             EffectInstance &effect = *layer->Effects()[0];
             effect.SetName(world.Name());
             effect.SetEnabled(world.Number(2) == 0);
             effect.Properties().StaticValue("amount") = static_cast<float>(world.Number(99));
             effect.SetPropertyUIState("smooth", {.visible = world.Number(2) == 0});
             TestPlugin::Text(effect) = std::to_string(world.Number(99));
             layer->Effects().Add(EffectInstance::Copy(layer->Effects()[0]));
         }
         if (layer->Effects().size() > 2)
             layer->Effects().erase(layer->Effects().begin());
     }},
    {"masks and trackers",
     [](World &world) {
         const auto layer = world.Find<AssetLayer>();
         if (!layer || layer->Masks().empty() || layer->Trackers().empty())
             return;
         Mask &mask = *layer->Masks()[0];
         mask.SetVisible(world.Number(2) == 0);
         mask.SetInverted(world.Number(2) == 0);
         mask.Path().Points().Add(PathPoint::Create(1, 2, mask.Path().ID()));
         std::swap(mask.Path().Points()[0], mask.Path().Points()[2]);
         mask.Path().Points()[1]->SetLinear(world.Number(2) == 0);
         mask.Path().SetClosed(world.Number(2) == 0);
         layer->Masks().Add(Mask::Copy(layer->Masks()[0]));
         Tracker &tracker = *layer->Trackers()[0];
         tracker.SetName(world.Name());
         tracker.PrimaryTrackingPoint()->SetVisible(world.Number(2) == 0);
         tracker.PrimaryTrackingPoint()->Animation().KeyFrames("featureOffset").Set(world.Number(99), 1.F);
     }},
    {"what a layer shows",
     [](World &world) {
         if (const auto layer = world.Find<AssetLayer>())
             layer->SetAsset(world.project->Assets().All()[static_cast<std::size_t>(1 + world.Number(2))]);
     }},
    {"text",
     [](World &world) {
         const auto text = world.Find<TextLayer>();
         if (!text)
             return;
         text->Text().Append(TextLayer::CreateCharToken(
             static_cast<unsigned short>('a' + world.Number(20)),
             text->TextFormat(world.Name(), u"", 12, {}, {}, 1, 0, 0), KyID::Generate()));
         text->SetMaxX(static_cast<float>(world.Number(300)));
     }},
    {"assets and folders",
     [](World &world) {
         AssetList &assets = world.project->Assets();
         BinFolder &root = assets.Bin();
         const auto solid = SolidAsset::Create(world.Name(), {}, world.Number(99), 2, PAR::Square);
         assets.All().Add(solid);
         const auto folder = BinFolder::Create(world.Name());
         folder->SetParentFolderID(root.ID());
         folder->Assets().Add(solid);
         solid->SetParentFolderID(folder->ID());
         if (!root.Folders().empty() && world.Number(2) == 0) {
             folder->Folders().Add(root.Folders()[0]);
             root.Folders().erase(root.Folders().begin());
         }
         root.Folders().Add(folder);
         std::reverse(root.Assets().begin(), root.Assets().end());
         if (assets.All().size() > 4)
             assets.All().erase(std::prev(assets.All().end(), 2));
         std::dynamic_pointer_cast<SolidAsset>(world.Solid())->SetWidth(world.Number(999));
     }},
    {"a composition",
     [](World &world) {
         const auto composition = world.Main();
         composition->SetCurrentTimeIndicator(world.Number(99));
         composition->RenderSettings().SetFogEnabled(world.Number(2) == 0);
         composition->Settings().SetFrameCount(world.Number(999));
         PanelRenderState &panel = composition->ViewerPanelState();
         if (panel.ViewStates().empty())
             panel.AddViewState();
         panel.ViewState(panel.ViewStates()[0]->ID).Gz = world.Number(9);
     }},
    {"instances",
     [](World &world) {
         AbstractAsset::InstanceList &instances = world.Solid()->Instances();
         instances.Clear();
         for (const auto &layer : world.Main()->Layers())
             if (auto instance = std::dynamic_pointer_cast<AbstractAssetInstance>(layer))
                 instances.insert(instances.begin(), instance);
     }},
    {"objects",
     [](World &world) {
         SequenceObjectList &objects = world.Track().Objects();
         const auto object = world.AnyObject();
         if (!object)
             return;
         objects.Move(object, world.Number(99), world.Number(2) == 0);
         object->Properties().StaticValue("opacity") = static_cast<float>(world.Number(99));
         const auto copy = VisualObject::Copy(std::dynamic_pointer_cast<VisualObject>(object), true);
         copy->SetParentTrackID(world.Track().ID());
         objects.Insert(copy, object->StartFrame());
         if (objects.Count() > 4)
             objects.Remove(world.AnyObject());
     }},
    {"transitions",
     [](World &world) {
         const auto object = world.AnyObject();
         if (!object)
             return;
         const bool hasOne = object->OutgoingTransition() != nullptr;
         object->SetOutgoingTransition(hasOne ? nullptr
                                              : Transition::Create(world.checked.plugins->plugins[0]));
     }},
    {"the length of a transition",
     [](World &world) {
         if (const auto object = world.AnyObject(); object && object->OutgoingTransition())
             object->OutgoingTransition()->SetLength(world.Number(50));
     }},
    {"tracks",
     [](World &world) {
         const auto sequence = world.project->Sequence();
         sequence->SetName(world.Name());
         sequence->VideoTracks().Add(VideoTrack::Create(sequence, world.Name()));
         sequence->VideoTracks().back()->SetVisible(false);
         sequence->AudioTracks()[0]->SetLevel(static_cast<float>(world.Number(9)));
         const auto object = world.AnyObject();
         if (!object)
             return;
         world.Track().Objects().Remove(object);
         object->SetParentTrackID(sequence->VideoTracks().back()->ID());
         sequence->VideoTracks().back()->Objects().Insert(object, world.Number(50));
     }},
};

/// One change of the table after the other comes first as seeds go on; some at random follow.
std::shared_ptr<Project> Changed(const CheckedProject &checked, const WideString &text, unsigned int seed)
{
    World world(checked, checked.Reload(text), seed);
    std::size_t next = seed % std::size(kChanges);
    for (int count = 1 + world.Number(4); count > 0; --count) {
        kChanges[next].change(world);
        next = static_cast<std::size_t>(world.Number(std::size(kChanges)));
    }
    // What a file holds, and no dangling rest of what was taken apart above.
    return checked.Reload(world.project->Serialize());
}

/// Of all objects whose addresses a host may hold.
std::map<NarrowString, const void *> Addresses(const Project &project)
{
    std::map<NarrowString, const void *> addresses;
    const auto add = [&](const auto &list) {
        for (const auto &object : list)
            if (object)
                addresses.emplace(object->ID().ToNarrowString(), object.get());
    };
    add(project.Assets().All());
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition)) {
        const auto &layers = std::static_pointer_cast<CompositionAsset>(asset)->Layers();
        add(layers);
        for (const auto &layer : layers) {
            if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer)) {
                add(shown->Effects());
                add(shown->Masks());
                add(shown->Trackers());
            }
        }
    }
    add(project.Sequence()->VideoTracks());
    for (const auto &track : project.Sequence()->VideoTracks())
        track->Objects().ForEach([&](const std::shared_ptr<AbstractSequenceObject> &object) {
            add(std::vector{object});
            add(object->Effects());
            add(std::vector{object->OutgoingTransition()});
        });
    return addresses;
}

class GeneratedPairs : public testing::TestWithParam<unsigned int>
{
};

TEST_P(GeneratedPairs, DifferencesMakeOneIntoTheOther)
{
    const CheckedProject checked;
    const auto before = Changed(checked, checked.project->Serialize(), GetParam());
    const WideString first = before->Serialize();
    const auto after = Changed(checked, first, GetParam() + 1000);
    const WideString second = after->Serialize();

    const std::vector<Difference> differences = Compare(*before, *after);
    EXPECT_TRUE(Compare(*after, *after).empty());
    ASSERT_EQ(ToUtf8(ApplyToText(first, differences)), ToUtf8(second));
    EXPECT_EQ(ApplyToText(second, differences), second);

    EditHistory history(before);
    history.SetChecksAnnouncements(true);
    const std::map<NarrowString, const void *> addresses = Addresses(*before);
    Apply(before, differences, NoEffects());
    for (const auto &[id, address] : Addresses(*before)) {
        const auto known = addresses.find(id);
        EXPECT_TRUE(known == addresses.end() || known->second == address) << id;
    }
    ASSERT_EQ(ToUtf8(before->Serialize()), ToUtf8(second));
    Apply(before, differences, NoEffects());
    EXPECT_EQ(before->Serialize(), second);
    while (history.Undo()) {
    }
    EXPECT_EQ(ToUtf8(before->Serialize()), ToUtf8(first));
    while (history.Redo()) {
    }
    EXPECT_EQ(before->Serialize(), second);
}

INSTANTIATE_TEST_SUITE_P(Seeds, GeneratedPairs, testing::Range(0U, 80U));

TEST(Apply, WhatStaysKeepsItsAddress)
{
    const CheckedProject checked;
    const auto project = checked.Reload(checked.project->Serialize());
    World world(checked, checked.Reload(checked.project->Serialize()), 1);
    const auto layer = world.Find<AssetLayer>();
    layer->SetName(u"Another");
    layer->Effects()[0]->Properties().StaticValue("amount") = 3.F;
    world.Main()->Layers().reverse();
    const auto moved = world.Track().Objects()[0];
    world.Track().Objects().Move(moved, 200, true);

    const World own(checked, project, 1);
    const auto composition = own.Main();
    const auto ownLayer = own.Find<AssetLayer>();
    const auto effect = ownLayer->Effects()[0];
    const PropertyValue *amount = &effect->Properties().StaticValue("amount");
    const auto object = own.Track().Objects()[0];
    Apply(project, Compare(*project, *world.project), NoEffects());
    EXPECT_EQ(own.Main(), composition);
    EXPECT_EQ(own.Find<AssetLayer>(), ownLayer);
    EXPECT_EQ(ownLayer->Effects()[0], effect);
    EXPECT_EQ(boost::get<float>(*amount), 3.F);
    EXPECT_EQ(project->Sequence()->FindObjectByID(moved->ID()), object);
    EXPECT_EQ(object->StartFrame(), 200);
}

TEST(Apply, WhatCannotBeChangedIsRefusedAndNothingIs)
{
    const CheckedProject checked;
    const auto project = checked.Reload(checked.project->Serialize());
    const WideString text = project->Serialize();
    const auto other = Project::Create(nullptr);
    EXPECT_THROW(Apply(project, Compare(*project, *other), NoEffects()), OperationException);
    EXPECT_EQ(project->Serialize(), text);

    Difference missing;
    missing.path = {"AssetList", "Assets", "SolidAsset 0", "Name"};
    EXPECT_THROW(Apply(project, {missing}, NoEffects()), OperationException);
    EXPECT_EQ(project->Serialize(), text);
}

} // namespace

} // namespace marlet::test
