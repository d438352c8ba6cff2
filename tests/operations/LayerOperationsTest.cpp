#include "LayerDrawing.h"

#include <tests/support/Ball.h>

#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/LayerTiming.h>

#include <gtest/gtest.h>

namespace marlet::test
{

namespace
{

/// Saves which layer it follows.
struct SavedBall : Ball {
    using Ball::Ball;
    std::shared_ptr<Abstract3DEffect> Clone() const override { return std::make_shared<SavedBall>(*this); }
    void Serialize(void *document, void *element, const ProjectTextureImageCache &) const override
    {
        static_cast<QDomElement *>(element)->setAttribute("target",
                                                          QString::fromStdString(target.ToNarrowString()));
        static_cast<void>(document);
    }
};

struct Stage : CheckedProject {
    /// Of 50 frames, at half the rate of the others.
    std::shared_ptr<CompositionAsset> slow = AddAsset(CompositionAsset::Create(u"Slow", {}, 50));
    std::shared_ptr<AssetLayer> nested;

    Stage()
    {
        slow->Settings() = std::as_const(*composition).Settings();
        slow->Settings().SetFrameCount(50);
        slow->Settings().SetFrameRate(12.5);
        point->SetParentLayer(text);
        nested = Show(slow);
        nested->SetStartFrame(10);
        nested->SetEndFrame(60);
        nested->SetAssetInstanceStart(20);
    }
};

constexpr char kBefore[] = "Point [0..100) parent=Title\n"
                           "Title [0..100)\n"
                           "Picture [0..100) Red+0 effect>Title tracker>Point\n"
                           "Slow [10..60) Slow+20\n";

TEST(LayerOperations, ChangeTheStackAndKeepAllSidesInStep)
{
    struct Row {
        const char *what;
        std::function<void(Stage &)> operation;
        const char *after;
    };
    const Row rows[] = {
        {"add a new layer, which spans the composition",
         [](Stage &s) { AddLayer(s.project, s.composition, PointLayer::Create(u"New"), 1); },
         "Point [0..100) parent=Title\n"
         "New [0..100)\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+20\n"},
        {"add an asset of another rate, and a still, which lasts to the end",
         [](Stage &s) {
             Edit edit(s.project, u"Both");
             AddAssetLayer(s.project, s.inner, s.slow, 5);
             AddAssetLayer(s.project, s.composition, s.solid, 30, 99);
             edit.Commit();
         },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+20\n"
         "Red [30..100) Red+0\n"
         "--\n"
         "Slow [5..105) Slow+0\n"},
        {"remove what others refer to",
         [](Stage &s) {
             RemoveLayers(s.project, {s.text, s.nested});
         },
         "Point [0..100)\n"
         "Picture [0..100) Red+0 effect tracker>Point\n"},
        {"remove where a tracker leads", [](Stage &s) { RemoveLayers(s.project, {s.point}); },
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker\n"
         "Slow [10..60) Slow+20\n"},
        {"reorder", [](Stage &s) { ReorderLayer(s.project, s.point, 2); },
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Point [0..100) parent=Title\n"
         "Slow [10..60) Slow+20\n"},
        {"split a layer of frames", [](Stage &s) { SplitLayer(s.project, s.nested, 25); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [25..60) Slow+35\n"
         "Slow [10..25) Slow+20\n"},
        {"split a still with all that it owns", [](Stage &s) { SplitLayer(s.project, s.layer, 25); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [25..100) Red+0 effect>Title tracker>Point\n"
         "Picture [0..25) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+20\n"},
        {"trim up to both edges of the asset", [](Stage &s) { TrimLayer(s.project, s.nested, -10, 90); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [-10..90) Slow+0\n"},
        {"trim inwards", [](Stage &s) { TrimLayer(s.project, s.nested, 15, 20); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [15..20) Slow+25\n"},
        {"slip", [](Stage &s) { SlipLayer(s.project, s.nested, -20); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+0\n"},
        {"move",
         [](Stage &s) {
             MoveLayers(s.project, {s.nested, s.text}, -20);
         },
         "Point [0..100) parent=Title\n"
         "Title [-20..80)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [-10..40) Slow+20\n"},
        {"hang on another one", [](Stage &s) { SetParent(s.project, s.nested, s.point, 12); },
         "Point [0..100) parent=Title\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+20 parent=Point\n"},
        {"leave a parent", [](Stage &s) { RemoveParent(s.project, s.point, 12); },
         "Point [0..100)\n"
         "Title [0..100)\n"
         "Picture [0..100) Red+0 effect>Title tracker>Point\n"
         "Slow [10..60) Slow+20\n"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Stage stage;
        ASSERT_EQ(DrawnLayers(stage, *stage.composition), kBefore);
        stage.text->Animation().StaticValue("position") = kytl::matl::KyPoint<3, float>{30, 40, 0};
        Perform(stage.project, [&] { row.operation(stage); });
        std::string drawn = DrawnLayers(stage, *stage.composition);
        if (!stage.inner->Layers().empty())
            drawn += "--\n" + DrawnLayers(stage, *stage.inner);
        EXPECT_EQ(drawn, row.after);
    }
}

TEST(LayerOperations, RefuseWithTheReason)
{
    Stage s;
    const auto inInner = s.Show(s.composition, s.inner);
    const auto stranger = PointLayer::Create(u"Stranger");
    const auto refuse = [&](const std::function<void()> &operation, const std::string &words) {
        Refuse(s.project, operation, words);
    };
    refuse([&] { AddLayer(s.project, s.composition, s.point); },
           "Layer \"Point\" is in composition \"Main\" already");
    refuse([&] { AddAssetLayer(s.project, s.inner, s.inner); }, "Composition \"Inner\" would show itself");
    refuse([&] { AddAssetLayer(s.project, s.composition, s.inner); },
           "Composition \"Main\" would show itself in \"Inner\"");
    refuse([&] { AddAssetLayer(s.project, s.composition, SolidAsset::Create(u"Blue", {}, 1, 1, {})); },
           "Layer \"Blue\" shows an asset that is not in the project");
    refuse(
        [&] {
            RemoveLayers(s.project, {s.point, stranger});
        },
        "Layer \"Stranger\" is in no composition of the project");
    refuse([&] { SplitLayer(s.project, s.nested, 10); }, "Frame 10 is not inside of layer \"Slow\"");
    refuse([&] { TrimLayer(s.project, s.nested, 20, 20); }, "No frame of layer \"Slow\" would be left");
    refuse([&] { TrimLayer(s.project, s.nested, -11, 60); },
           "Layer \"Slow\" would show frames -1 to 70 of asset \"Slow\", which has 100 frames");
    refuse([&] { TrimLayer(s.project, s.nested, 10, 91); },
           "Layer \"Slow\" would show frames 20 to 101 of asset \"Slow\", which has 100 frames");
    refuse([&] { SlipLayer(s.project, s.nested, 31); },
           "Layer \"Slow\" would show frames 51 to 101 of asset \"Slow\", which has 100 frames");
    refuse([&] { SlipLayer(s.project, s.layer, 1); }, "Layer \"Picture\" shows nothing that moves");
    refuse([&] { SetParent(s.project, s.text, s.point, 0); }, "Layer \"Title\" would become its own parent");
    refuse([&] { SetParent(s.project, s.text, inInner, 0); },
           "Layers \"Title\" and \"Main\" are in two compositions");
    refuse([&] { RemoveParent(s.project, s.text, 0); }, "Layer \"Title\" has no parent");
}

TEST(LayerOperations, KeepALayerInPlaceWhereItLeavesAParent)
{
    Stage s;
    s.text->Animation().StaticValue("position") = kytl::matl::KyPoint<3, float>{30, 40, 0};
    s.text->Animation().StaticValue("rotationZ") = 90.f;
    const auto place = [&] { return s.point->WorldTransformationAtTime(0, s.project, false); };
    const auto before = place();
    Perform(s.project, [&] { RemoveParent(s.project, s.point, 0); });
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(place()(i / 4, i % 4), before(i / 4, i % 4), 1e-4);
}

/// The key frames of everything that the picture owns, each named by its frame.
class KeyFramesOfALayer : public testing::TestWithParam<double>
{
protected:
    KeyFramesOfALayer()
    {
        stage.composition->Settings().SetFrameRate(GetParam());
        stage.layer->SetStartFrame(7);
        for (PropertyManager *properties : OwnedBy(*stage.layer))
            for (const int frame : {-3, 0, 11, 20, 31})
                properties->KeyFrames(Animated(*properties)).Set(TimeOf(frame), ValueOf(*properties, frame));
    }

    static std::vector<PropertyManager *> OwnedBy(AbstractLayer &layer)
    {
        auto &shown = dynamic_cast<AssetLayer &>(layer);
        return {&shown.Animation(), &shown.Effects()[0]->Properties(), &shown.Masks()[0]->Animation(),
                &shown.Trackers()[0]->PrimaryTrackingPoint()->Animation()};
    }

    static const char *Animated(const PropertyManager &properties)
    {
        for (const char *name : {"rotationZ", "amount", "featurePosition", "expansion"})
            if (properties.HasProperty(name))
                return name;
        return "";
    }

    static PropertyValue ValueOf(const PropertyManager &properties, int frame)
    {
        if (properties.HasProperty("featurePosition"))
            return kytl::matl::KyPoint<2, float>{float(frame), 0};
        return float(frame);
    }

    static int FrameOf(const PropertyValue &value)
    {
        const auto *point = boost::get<kytl::matl::KyPoint<2, float>>(&value);
        return static_cast<int>(point ? point->X : boost::get<float>(value));
    }

    /// As a host counts.
    static int TimeOf(int frame) { return static_cast<int>(frame * (1000 / GetParam())); }

    /// Whether each key frame is where its frame is, in a layer that starts so many frames later.
    static void ExpectMoved(AbstractLayer &layer, int later)
    {
        for (PropertyManager *properties : OwnedBy(layer)) {
            const char *name = Animated(*properties);
            std::string at;
            std::string expected;
            properties->KeyFrames(name).ForEach([&](KeyFrame &key) {
                at += std::to_string(key.Time()) + " ";
                expected += std::to_string(TimeOf(FrameOf(key.Value()) - later)) + " ";
            });
            EXPECT_EQ(at, expected) << name;
            EXPECT_EQ(properties->KeyFrames(name).Count(), 5U);
        }
    }

    Stage stage;
};

TEST_P(KeyFramesOfALayer, StayOnTheirFramesWhenItIsSplitAndTrimmed)
{
    std::shared_ptr<AbstractLayer> tail;
    Perform(stage.project, [&] { tail = SplitLayer(stage.project, stage.layer, 20); });
    ExpectMoved(*stage.layer, 0);
    ExpectMoved(*tail, 13);
    Perform(stage.project, [&] { TrimLayer(stage.project, stage.layer, 2, 20); });
    ExpectMoved(*stage.layer, -5);
    Perform(stage.project, [&] { TrimLayer(stage.project, stage.layer, 7, 20); });
    ExpectMoved(*stage.layer, 0);
    Perform(stage.project, [&] { MoveLayers(stage.project, {stage.layer}, 9); });
    ExpectMoved(*stage.layer, 0);
}

INSTANTIATE_TEST_SUITE_P(Rates, KeyFramesOfALayer, testing::Values(25.0, 30000 / 1001.0, 60000 / 1001.0));

TEST(LayerOperations, PutBackThe3DEffectThatReferredToARemovedLayer)
{
    Stage s;
    const auto follows = std::make_shared<SavedBall>("red", s.point->ID());
    const auto other = std::make_shared<SavedBall>("blue", s.text->ID());
    const auto first = Effect3DLayer::Create(follows, u"First");
    const auto second = Effect3DLayer::Create(other, u"Second");
    AddLayer(s.project, s.composition, first);
    AddLayer(s.project, s.composition, second);
    EditHistory history(s.project);
    RemoveLayers(s.project, {s.point});
    EXPECT_TRUE(std::static_pointer_cast<SavedBall>(first->Effect())->target.IsNull());
    EXPECT_EQ(first->Effect()->IsLayerReferenced(s.composition, s.point->ID()), false);
    EXPECT_EQ(second->Effect(), other);
    history.Undo();
    EXPECT_EQ(first->Effect(), follows);
    EXPECT_EQ(follows->target, s.point->ID());
}

} // namespace

} // namespace marlet::test
