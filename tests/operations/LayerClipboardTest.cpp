#include "LayerDrawing.h"

#include <tests/support/Ball.h>

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerClipboard.h>

#include <gtest/gtest.h>

namespace marlet::test
{

namespace
{

using Layers = std::vector<std::shared_ptr<AbstractLayer>>;

/// The picture's effect keeps a text of its own, and the point hangs on the title.
struct Source : CheckedProject {
    Source()
    {
        point->SetParentLayer(text);
        TestPlugin::Text(*effect) = "private";
    }

    static NarrowString &TextOf(const AbstractLayer &layer)
    {
        return TestPlugin::Text(*dynamic_cast<const AssetLayer &>(layer).Effects()[0]);
    }
};

/// The same plug-in as another project loads it.
void AddPluginOf(const Source &source, const CheckedProject &target)
{
    const auto plugin = std::make_shared<TestPlugin>();
    plugin->id = source.plugins->plugins[0]->id;
    target.plugins->plugins.push_back(plugin);
}

TEST(LayerClipboard, PastesWithinAProjectWhatRefersToOneAnother)
{
    struct Row {
        const char *what;
        std::function<Layers(Source &)> copied;
        bool intoInner;
        PasteOptions options;
        const char *after;
    };
    const auto all = [](Source &s) { return Layers{s.layer, s.text, s.point}; };
    const auto some = [](Source &s) { return Layers{s.point, s.layer}; };
    using Outside = PasteOptions::Outside;
    const Row rows[] = {
        {"all, above their sources",
         all,
         false,
         {},
         "Point [0..100) parent=Title\nTitle [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Point [0..100) parent=Title\nTitle [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"},
        {"all, elsewhere and later",
         all,
         true,
         {.startFrame = 30},
         "Point [30..130) parent=Title\nTitle [30..130)\n"
         "Picture [30..130) Red+0 effect>Title tracker>Point\n"},
        {"some, which go on referring to others",
         some,
         false,
         {.position = 3, .outside = Outside::Keep},
         "Point [0..100) parent=Title\nTitle [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Point [0..100) parent=Title\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"},
        {"some, which do not",
         some,
         false,
         {.position = 3, .outside = Outside::Clear},
         "Point [0..100) parent=Title\nTitle [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Point [0..100)\n"
         "Picture [0..100) Red+0 effect tracker>Point\n"},
        {"some, where the others are not",
         some,
         true,
         {.outside = Outside::Keep},
         "Point [0..100)\nPicture [0..100) Red+0 effect tracker>Point\n"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Source s;
        const auto &into = row.intoInner ? s.inner : s.composition;
        const auto copied = CopyLayers(s.project, row.copied(s));
        TestPlugin::Text(*s.effect) = "changed since";
        Layers pasted;
        Perform(s.project, [&] { pasted = PasteLayers(s.project, into, *copied, row.options); });
        EXPECT_EQ(DrawnLayers(s, *into), row.after);
        EXPECT_EQ(Source::TextOf(*pasted.back()), "private");
        EXPECT_EQ(s.solid->Instances().Count(), 2U);
        // Names cannot tell whether the copies refer to one another or to their sources.
        for (const auto &source : Layers{s.layer, s.text, s.point})
            for (const auto &layer : pasted)
                EXPECT_EQ(layer->IsLayerReferenced(into, source->ID()),
                          row.options.outside == Outside::Keep && !row.intoInner && pasted.size() == 2 &&
                              source == s.text);
    }
}

TEST(LayerClipboard, BringsWhatLayersShowIntoAnotherProjectOnce)
{
    auto source = std::make_unique<Source>();
    // What the composition shows comes along, too.
    const auto below = source->Show(source->solid, source->inner);
    below->Effects().Add(EffectInstance::Copy(source->effect));
    below->Effects()[0]->SetParent(below->ID(), source->inner->ID());
    below->Effects()[0]->Properties().StaticValue("layer") = KyID();
    const auto nested = source->Show(source->inner);
    CheckedProject target;
    AddPluginOf(*source, target);

    auto copied = CopyLayers(source->project, {source->layer, nested});
    Layers pasted;
    const auto paste = [&](PasteOptions::Assets assets) {
        pasted = PasteLayers(target.project, target.inner, *copied, {.assets = assets});
    };
    const WideString sourceText = source->project->Serialize();
    Perform(target.project, [&] { paste(PasteOptions::Assets::Match); });
    EXPECT_EQ(DrawnLayers(target, *target.inner),
              "Picture [0..100) Red+0 effect tracker\nInner [0..100) Inner+0\n");
    // The red solid is alike, the composition is not.
    EXPECT_EQ(DrawnFolders(*target.project), "/ Main:0 Inner:0 Red:3 Inner:1\n");
    EXPECT_EQ(Source::TextOf(*pasted.front()), "private");
    Perform(target.project, [&] { paste(PasteOptions::Assets::Match); });
    EXPECT_EQ(DrawnFolders(*target.project), "/ Main:0 Inner:0 Red:4 Inner:2\n");

    // Nothing is shared: the source stays as it is, and may go.
    Source::TextOf(*pasted.front()) = "of the target";
    pasted.front()->Animation().KeyFrames("rotationZ").Set(0, 1.f);
    EXPECT_EQ(source->project->Serialize(), sourceText);
    const WideString targetText = target.project->Serialize();
    copied.reset();
    below->Effects().Clear();
    source.reset();
    EXPECT_EQ(target.project->Serialize(), targetText);
}

TEST(LayerClipboard, CopiesAssetsInAnyCaseIfThatIsAskedFor)
{
    Source source;
    CheckedProject target;
    AddPluginOf(source, target);
    const auto copied = CopyLayers(source.project, {source.layer});
    Perform(target.project, [&] {
        PasteLayers(target.project, target.inner, *copied, {.assets = PasteOptions::Assets::Copy});
    });
    EXPECT_EQ(DrawnFolders(*target.project), "/ Main:0 Inner:0 Red:1 Red:1\n");
}

TEST(LayerClipboard, RefusesWithTheReason)
{
    Source s;
    const auto nested = s.Show(s.inner);
    const auto copied = CopyLayers(s.project, {s.layer, nested});
    Refuse(
        s.project, [&] { PasteLayers(s.project, s.inner, *copied); },
        "Composition \"Inner\" would show itself");
    CheckedProject target;
    Refuse(
        target.project, [&] { PasteLayers(target.project, target.inner, *copied); },
        "The project has no plug-in for effect \"Blur\" of layer \"Picture\"");
    Refuse(
        s.project, [&] { CopyLayers(s.project, {}); }, "There are no layers");
    RemoveAsset(s.project, s.solid, UsesOfRemoved::Remove);
    Refuse(
        s.project, [&] { PasteLayers(s.project, s.composition, *copied); },
        "What layer \"Picture\" shows is in its project no more");
}

TEST(LayerClipboard, Makes3DEffectsAnewByTheFactory)
{
    Source source;
    const auto ball = std::make_shared<PlainBall>("red");
    const auto layer = Effect3DLayer::Create(ball, u"Ball");
    layer->SetParentComposition(source.composition);
    source.composition->Layers().Add(layer);
    const auto copied = CopyLayers(source.project, {layer});
    CheckedProject target;
    const BallFactory factory;
    const auto pasted = PasteLayers(target.project, target.inner, *copied, {.effectFactory = &factory});
    const auto made =
        std::dynamic_pointer_cast<PlainBall>(std::dynamic_pointer_cast<Effect3DLayer>(pasted[0])->Effect());
    EXPECT_EQ(made->colour, "red");
    EXPECT_TRUE(made->toldLayerIDs.empty()); // no clone, which would have been told
    EXPECT_EQ(pasted[0]->ParentCompositionID(), target.inner->ID());
}

} // namespace

} // namespace marlet::test
