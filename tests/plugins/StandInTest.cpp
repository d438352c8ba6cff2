// Effects and transitions whose plug-in is missing, in a load that keeps what is unknown.

#include <tests/support/TestPlugins.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/Abstract3DEffect.h>
#include <marlet/layers/Abstract3DEffectFactory.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <QDomDocument>
#include <QDomElement>

#include <gtest/gtest.h>

using namespace marlet::test;

namespace
{

struct NoEffects : Abstract3DEffectFactory {
    std::shared_ptr<Abstract3DEffect> Create(void *, ProjectTextureImageCache &) const override
    {
        return nullptr;
    }
};

std::shared_ptr<CompositionAsset> Composition(const Project &project)
{
    return std::static_pointer_cast<CompositionAsset>(
        project.Assets().GetByType(AssetType::Composition).at(0));
}

std::shared_ptr<TextLayer> Layer(const CompositionAsset &composition, int number)
{
    return std::static_pointer_cast<TextLayer>(*std::next(composition.Layers().begin(), number));
}

/// A project whose plug-in adds to all that it can, on a layer and between two objects.
struct StandIns : testing::Test {
    std::shared_ptr<TestPlugin> plugin = std::make_shared<TestPlugin>();
    std::shared_ptr<TestPluginManager> manager = std::make_shared<TestPluginManager>();
    std::shared_ptr<Project> project = Project::Create(manager);
    WideString text;

    StandIns()
    {
        manager->plugins = {plugin};
        plugin->whenSaved = [](AbstractPluginInstance *, void *document, void *element) {
            auto &root = *static_cast<QDomElement *>(element);
            root.setAttribute("seed", "7 < 8");
            QDomElement extra = static_cast<QDomDocument *>(document)->createElement("Extra");
            extra.appendChild(static_cast<QDomDocument *>(document)->createTextNode("of the\nplug-in"));
            root.appendChild(extra);
            root.firstChildElement("PropertyManager").firstChildElement("amount").setAttribute("note", "x");
        };
        const auto composition = CompositionAsset::Create(u"Shot", AudioVideoSettings::Preset{}, 100);
        for (const char16_t *name : {u"Title", u"Below"}) {
            const auto layer = TextLayer::Create(name, 640, 480);
            layer->SetParentComposition(composition);
            composition->Layers().Add(layer);
        }
        const auto effect = NewEffect();
        effect->Properties().StaticValue("layer") = Layer(*composition, 1)->ID();
        effect->Properties().StaticValue("amount") = 12.5f;
        effect->Properties().KeyFrames("amount").Add(KeyFrame(3, 4.f));
        effect->SetPropertyUIState("smooth", {true});
        effect->SetParent(Layer(*composition, 0)->ID(), composition->ID());
        Layer(*composition, 0)->Effects().Add(effect);
        project->Assets().All().Add(composition);
        project->SetSequence(SequenceOf(composition));
        text = project->Serialize();
    }

    std::shared_ptr<EffectInstance> NewEffect() const
    {
        const auto effect = EffectInstance::Create(plugin);
        TestPlugin::Text(*effect) = "its own";
        return effect;
    }

    std::shared_ptr<EditorSequence> SequenceOf(const std::shared_ptr<AbstractAsset> &asset) const
    {
        const auto sequence = EditorSequence::Create({}, 100);
        VideoTrack &track = *sequence->VideoTracks().at(0);
        std::vector<std::shared_ptr<VisualObject>> objects;
        for (int i = 0; i < 2; ++i) {
            const auto object = VisualObject::Create(asset, sequence);
            object->SetParentTrackID(track.ID());
            object->Effects().Add(NewEffect());
            track.Objects().Insert(object, i * 100);
            objects.push_back(object);
        }
        const auto transition = Transition::Create(plugin);
        TestPlugin::Text(*transition) = "between";
        transition->SetFromObject(objects[0]->ID());
        transition->SetToObject(objects[1]->ID());
        objects[0]->SetOutgoingTransition(transition);
        objects[1]->SetIncomingTransition(transition);
        return sequence;
    }

    static std::shared_ptr<Project> Load(const WideString &text,
                                         const std::shared_ptr<AbstractPluginManager> &plugins,
                                         LoadReport *report = nullptr, bool keeps = true)
    {
        return Project::CreateFromXml(text, u"", plugins, NoEffects(),
                                      {.report = report, .keepUnknown = keeps});
    }
};

} // namespace

TEST_F(StandIns, KeepWhatAPluginSavedWhoeverItIs)
{
    const auto empty = std::make_shared<TestPluginManager>();
    const auto older = std::make_shared<TestPluginManager>();
    older->plugins = {std::make_shared<TestPlugin>()};
    older->plugins[0]->id = plugin->id;
    older->plugins[0]->version.build = 3;
    const std::shared_ptr<TestPluginManager> kManagers[] = {nullptr, empty, older};
    for (const auto &plugins : kManagers) {
        SCOPED_TRACE(plugins == older);
        LoadReport report;
        const auto read = Load(text, plugins, &report);
        EXPECT_EQ(read->Serialize(), text);
        const auto &effect = Layer(*Composition(*read), 0)->Effects().at(0);
        EXPECT_TRUE(effect->IsStandIn());
        EXPECT_EQ(effect->Plugin()->Kind(), AbstractPlugin::kStandIn);
        EXPECT_EQ(effect->Plugin()->Name(), plugin->name);
        EXPECT_EQ(boost::get<float>(effect->Properties().StaticValue("amount")), 12.5f);
        ASSERT_EQ(report.UnresolvedPlugins().size(), 1u);
        const UnresolvedPlugin &unresolved = report.UnresolvedPlugins()[0];
        EXPECT_EQ(unresolved.id, plugin->id);
        EXPECT_EQ(unresolved.name, u"Blur");
        EXPECT_EQ(unresolved.version, "1.2.3.4");
        EXPECT_EQ(unresolved.isOlder, plugins == older);
        EXPECT_EQ(unresolved.uses, 4);
        EXPECT_EQ(report.FirstLoss(), nullptr);
    }
    EXPECT_THROW(Load(text, empty, nullptr, false), MissingPluginException);
    EXPECT_THROW(Load(text, older, nullptr, false), InvalidPluginVersionException);
    // Where it is there, it stands for itself.
    EXPECT_FALSE(Layer(*Composition(*Load(text, manager)), 0)->Effects().at(0)->IsStandIn());
}

TEST_F(StandIns, AreEditedAndComeBackToTheirPlugin)
{
    const auto without = Load(text, nullptr);
    const auto composition = Composition(*without);
    const auto effect = Layer(*composition, 0)->Effects().at(0);
    effect->SetName(u"Renamed");
    effect->SetEnabled(false);
    // A copy goes where the original has gone.
    const auto copy = EffectInstance::Copy(effect);
    Layer(*composition, 0)->Effects().Clear();
    Layer(*composition, 1)->Effects().Add(effect);
    Layer(*composition, 1)->Effects().Add(copy);

    plugin->whenSaved = nullptr;
    const auto with = Load(without->Serialize(), manager);
    const auto &effects = Layer(*Composition(*with), 1)->Effects();
    ASSERT_EQ(effects.size(), 2u);
    for (const auto &back : effects) {
        EXPECT_FALSE(back->IsStandIn());
        EXPECT_EQ(back->Name(), u"Renamed");
        EXPECT_FALSE(back->Enabled());
        EXPECT_EQ(TestPlugin::Text(*back), "its own");
        EXPECT_EQ(back->Properties().KeyFrames("amount").Count(), 1u);
        EXPECT_TRUE(back->PropertyUIState("smooth").visible);
    }
    EXPECT_NE(effects.at(0)->ID(), effects.at(1)->ID());
    const auto object = with->Sequence()->VideoTracks().at(0)->Objects().FirstByTime();
    EXPECT_EQ(TestPlugin::Text(*object->OutgoingTransition()), "between");
}

TEST_F(StandIns, ReferToLayersAndFollowTheirCopies)
{
    const auto loaded = Load(text, nullptr);
    const auto composition = Composition(*loaded);
    const auto layer = Layer(*composition, 0);
    const kytl::KyID below = Layer(*composition, 1)->ID();
    const auto clone = std::static_pointer_cast<CompositionAsset>(composition->Clone());
    loaded->Assets().All().Add(clone);
    const auto followed = [](const CompositionAsset &of) {
        return boost::get<kytl::KyID>(Layer(of, 0)->Effects().at(0)->Properties().StaticValue("layer"));
    };
    EXPECT_NE(Layer(*clone, 1)->ID(), below);
    EXPECT_EQ(followed(*clone), Layer(*clone, 1)->ID());
    EXPECT_EQ(followed(*composition), below);
    // The plug-in finds the same once it is there again.
    const auto back = Load(loaded->Serialize(), manager)->Assets().GetByType(AssetType::Composition);
    EXPECT_EQ(followed(static_cast<CompositionAsset &>(*back.at(1))), Layer(*clone, 1)->ID());

    EXPECT_TRUE(layer->IsLayerReferenced(composition, below));
    layer->ChangeLayerReferences({{below.ToNarrowString(), plugin->id.ToNarrowString()}});
    EXPECT_EQ(followed(*composition), plugin->id);
    // Only the plug-in knows which of its IDs must be those of layers.
    layer->ClearInvalidLayerReferences({{below.ToNarrowString(), true}});
    EXPECT_EQ(followed(*composition), plugin->id);
}

TEST_F(StandIns, PropertiesThatAPluginNoLongerHasStay)
{
    plugin->whenSaved = nullptr;
    text = project->Serialize();
    plugin->properties.Clear();
    plugin->properties.CreateProperty("amount", 10.f, PropertyManager::Type::Animatable, nullptr);
    plugin->properties.CreateProperty("layer", KyID(), PropertyManager::Type::NotAnimatable, nullptr);
    LoadReport report;
    EXPECT_EQ(Load(text, manager, &report)->Serialize(), text);
    EXPECT_EQ(report.Count(LoadEntry::Severity::Loss), 4u);
    Load(text, manager, &report, false);
    EXPECT_EQ(report.Count(LoadEntry::Severity::Loss), 4u);
    ASSERT_NE(report.FirstLoss(), nullptr);
    EXPECT_TRUE(report.FirstLoss()->path.ends_with("/Instance \"Blur\"/PropertyManager/smooth"));
}

/// Of a plug-in that is there.
TEST_F(StandIns, AreNotNeededToKeepWhatNobodyKnows)
{
    NarrowString changed = ToUtf8(text);
    const auto put = [&changed](const char *behind, const char *more) {
        changed.insert(changed.find(behind) + NarrowString(behind).size(), more);
    };
    put("<Instance Version=\"2\"", " odd=\"1\"");
    put("<Enabled>1</Enabled>\n", "       <Odd><b/></Odd>\n");
    put("<UIState>\n", "        <Property name=\"older\" vis=\"0\"/>\n        <Odd/>\n");
    put("<PluginVersion", " odd=\"2\"");
    LoadReport report;
    const auto with = Load(FromUtf8(changed), manager, &report);
    const auto dropped = report.CountDropped();
    EXPECT_EQ(dropped, 0u);
    const NarrowString saved = ToUtf8(with->Serialize());
    for (const char *kept :
         {" odd=\"1\"", "<Odd><b/></Odd>", "name=\"older\" vis=\"0\"", "        <Odd/>\n", " odd=\"2\""})
        EXPECT_NE(saved.find(kept), NarrowString::npos) << kept;
    // What the plug-in itself writes is there once for each instance.
    const auto countIn = [](NarrowString in, const NarrowString &mark) {
        int count = 0;
        for (std::size_t at = 0; (at = in.find(mark, at)) != in.npos; ++at)
            ++count;
        return count;
    };
    EXPECT_EQ(countIn(saved, "<Extra>"), countIn(ToUtf8(text), "<Extra>"));
    EXPECT_EQ(Load(FromUtf8(saved), manager)->Serialize(), FromUtf8(saved));

    Load(FromUtf8(changed), manager, &report, false);
    EXPECT_EQ(report.CountDropped(), 5u);
}

TEST_F(StandIns, TellWhatAPluginHasMadeOfItsProperties)
{
    plugin->whenSaved = nullptr;
    text = project->Serialize();
    plugin->properties.Clear();
    plugin->properties.CreateProperty("amount", 11.f, PropertyManager::Type::NotAnimatable, nullptr);
    plugin->properties.CreateProperty("smooth", 1.f, PropertyManager::Type::NotAnimatable, nullptr);
    plugin->properties.CreateProperty("layer", KyID(), PropertyManager::Type::NotAnimatable, nullptr);
    plugin->properties.CreateProperty("young", 1, PropertyManager::Type::Animatable, nullptr);
    LoadReport report;
    Load(text, manager, &report);
    const auto tells = [&report](const char *end, const char *what) {
        return std::ranges::any_of(report.Entries(), [&](const LoadEntry &entry) {
            return entry.path.ends_with(end) && entry.what.starts_with(what);
        });
    };
    EXPECT_TRUE(tells("/amount/Default", "the plug-in has another default"));
    EXPECT_TRUE(tells("/amount", "Type and Spatial are others"));
    EXPECT_TRUE(tells("/smooth/Static", "the value is of another type"));
    EXPECT_TRUE(tells("/PropertyManager", "the property young is not there"));
}

TEST_F(StandIns, LeaveNoAttributeTwiceWhereAnElementGetsWhatWasKept)
{
    NarrowString changed = ToUtf8(text);
    const std::size_t start = changed.find("<Transition ");
    const std::size_t end = changed.find("</OutTrans>");
    const std::size_t reference = changed.find("<InTrans ref=\"1\"");
    ASSERT_LT(end, reference);
    NarrowString odd = changed;
    LoadReport report;
    Load(FromUtf8(odd.replace(reference + 14, 1, "zz")), nullptr, &report);
    EXPECT_TRUE(std::ranges::any_of(report.Entries(), [&](const LoadEntry &entry) {
        return entry.offset == reference && entry.what.starts_with("ref is \"zz\"");
    }));
    const NarrowString transition = changed.substr(start, end - start);
    // Not a reference, but a transition of its own, which the next save refers to.
    changed.replace(changed.find("/>", reference), 2, ">" + transition + "</InTrans>");
    changed.replace(reference, 16, "<InTrans");
    const WideString saved = Load(FromUtf8(changed), nullptr)->Serialize();
    EXPECT_NE(saved.find(u"<InTrans ref=\"1\" transID"), WideString::npos);
    EXPECT_EQ(Load(saved, nullptr)->Serialize(), saved);
}
