// What steps keep, what of it they count, and what they find and tell of changes.

#include "EditHistoryTest.h"

#include <tests/support/FakeMedia.h>

#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/ProjectMetadata.h>

#include <gmock/gmock.h>

using namespace marlet::test;
using testing::HasSubstr;

TEST_F(EditHistoryTest, CountsWhatItAloneKeepsAlive)
{
    Edit beginning(document.project, u"Fill");
    beginning.Touch(document.layer, "rotationZ");
    beginning.TouchMetadata();
    beginning.Touch(std::static_pointer_cast<PluginInstance>(document.effect));
    for (int time = 0; time < 1000; ++time)
        document.layer->Animation().KeyFrames("rotationZ").Set(time, 1.f);
    document.project->Metadata().SetStringValue(document.project->ID(), 1, WideString(50000, u'm'));
    TestPlugin::Text(*document.effect) = NarrowString(60000, 'p');
    beginning.Commit();
    history.Clear();

    struct Row {
        const char *what;
        std::function<void(Edit &)> change;
        std::size_t atLeast;
    };
    const Row rows[] = {
        {"a layer with key frames and a plug-in",
         [&](Edit &edit) {
             edit.TouchLayers(document.composition);
             document.composition->Layers().remove(document.layer);
         },
         1000 * sizeof(KeyFrame) + 60000},
        {"an effect",
         [&](Edit &edit) {
             edit.Touch(std::static_pointer_cast<AbstractLayer>(document.layer));
             document.layer->Effects().clear();
         },
         60000},
        {"a composition",
         [&](Edit &edit) {
             edit.TouchAssets();
             document.project->Assets().All().erase(document.project->Assets().All().begin());
         },
         1000 * sizeof(KeyFrame) + 60000},
        {"metadata",
         [&](Edit &edit) {
             edit.TouchMetadata();
             document.project->Metadata().RemoveStringValue(document.project->ID(), 1);
         },
         100000},
        {"an object",
         [&](Edit &edit) {
             const std::shared_ptr<AbstractSequenceTrack> track = document.sequence->VideoTracks()[0];
             edit.Touch(track, std::static_pointer_cast<AbstractSequenceObject>(document.first));
             track->Objects().Remove(document.first);
         },
         document.first->Properties().PropertyCount() * sizeof(PropertyValue)},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Edit edit(document.project, u"Remove");
        row.change(edit);
        edit.Commit();
        const std::size_t done = history.Size();
        EXPECT_GT(done, row.atLeast);
        history.Undo(); // the object is in the project again
        EXPECT_LT(history.Size() + row.atLeast, done + 1000);
    }
    history.SetLimits({1000, 200000});
    for (int i = 0; i < 5; ++i) {
        Edit edit(document.project, u"Remove one");
        edit.TouchLayers(document.composition);
        auto &layers = document.composition->Layers();
        const auto copy = document.layer->Clone(document.composition->ID());
        layers.push_back(copy);
        edit.Commit();
        Edit removal(document.project, u"Remove it");
        removal.TouchLayers(document.composition);
        layers.pop_back();
        removal.Commit();
    }
    EXPECT_LT(history.UndoCount(), 4U);
}

/// A file may hold what no setter takes, and an undo has to bring that back.
TEST(StoredValues, ComeBackThoughNoSetterTakesThem)
{
    CheckedProject document;
    const std::shared_ptr<AbstractLayer> more[] = {GradeLayer::Create(u"Grade", 10, 20),
                                                   CameraLayer::Create(u"Camera", 1, 100, 100, 1),
                                                   LightLayer::Create(u"Light", LightLayer::LightType{0})};
    for (const auto &layer : more) {
        layer->SetParentComposition(document.composition);
        document.composition->Layers().Add(layer);
    }
    document.solid->Instances().clear(); // which a load does not fill
    std::string text = ToUtf8(document.project->Serialize());
    for (const auto &[from, to] : {std::pair("<InPoint>0<", "<InPoint>-7<"),
                                   {"<MinX>-50<", "<MinX>70<"},
                                   {"<MinY>-25<", "<MinY>90<"},
                                   {"<Dimensions>0<", "<Dimensions>2<"},
                                   {"<AutoOrient>0</AutoOrient>\n      <PromoteLights>",
                                    "<AutoOrient>4</AutoOrient>\n      <PromoteLights>"},
                                   {"<AutoOrient>0<", "<AutoOrient>3<"}})
        for (std::size_t at = 0; (at = text.find(from)) != std::string::npos;)
            text.replace(at, std::string(from).size(), to);
    const auto project = document.Reload(FromUtf8(text));
    ASSERT_EQ(ToUtf8(project->Serialize()), text);

    EditHistory history(project);
    const auto composition =
        std::static_pointer_cast<CompositionAsset>(project->Assets().GetByID(document.composition->ID()));
    Edit edit(project, u"Change all");
    edit.Touch(std::static_pointer_cast<AbstractAsset>(composition));
    composition->SetInPoint(3);
    edit.Touch(project->Sequence());
    project->Sequence()->SetInPoint(3);
    for (const auto &layer : composition->Layers()) {
        edit.Touch(layer);
        layer->SetDimensions(LayerDimensions::TwoD);
        if (const auto shown = std::dynamic_pointer_cast<AssetLayer>(layer))
            shown->SetAutoOrientation(AutoOrient::Off);
        if (const auto camera = std::dynamic_pointer_cast<CameraLayer>(layer))
            camera->SetAutoOrientation(AutoOrient::Off);
        if (const auto light = std::dynamic_pointer_cast<LightLayer>(layer))
            light->SetAutoOrientation(AutoOrient::Off);
        if (const auto title = std::dynamic_pointer_cast<TextLayer>(layer)) {
            edit.TouchText(title);
            title->SetMinX(-5);
            title->SetMinY(-5);
        }
    }
    edit.Commit();
    history.Undo();
    EXPECT_EQ(ToUtf8(project->Serialize()), text);

    FakeMedia media;
    media.asset->SetTrimmerInPoint(500); // beyond the file's 100 frames
    media.asset->SetTrimmerOutPoint(600);
    const WideString before = media.asset->Serialize(project->TextureImageCache());
    Edit trimmer(project, u"Trimmer");
    trimmer.Touch(std::static_pointer_cast<AbstractAsset>(media.asset));
    media.asset->SetTrimmerInPoint(4);
    media.asset->SetTrimmerOutPoint(5);
    trimmer.Commit();
    history.Undo();
    EXPECT_EQ(media.asset->Serialize(project->TextureImageCache()), before);
}

TEST_F(EditHistoryTest, FindsChangesThatNobodyAnnouncedAndTakesBackTheOthers)
{
    history.SetChecksAnnouncements(true);
    Edit edit(document.project, u"Careless");
    edit.Touch(document.point);
    document.point->SetName(u"told");
    document.text->SetName(u"untold");
    try {
        edit.Commit();
        FAIL();
    } catch (const std::logic_error &failure) {
        EXPECT_THAT(failure.what(), HasSubstr("\"Careless\""));
        EXPECT_THAT(failure.what(), HasSubstr("untold"));
    }
    EXPECT_EQ(document.point->Name(), u"Point");
    EXPECT_FALSE(history.CanUndo());

    // What the edit had not announced stays, and was told. What is changed between edits is found by the
    // next.
    Rename(u"b");
    document.text->SetName(u"outside");
    try {
        history.Undo();
        FAIL();
    } catch (const std::logic_error &failure) {
        EXPECT_THAT(failure.what(), HasSubstr("<Name>untold</Name> became <Name>outside</Name>"));
    }
    EXPECT_EQ(document.point->Name(), u"b");
    document.composition->SetCurrentTimeIndicator(7);
    document.composition->ViewerPanelState().AddViewState();
    document.effect->SetPropertyUIState("amount", {false});
    EXPECT_TRUE(history.Undo());
    EXPECT_EQ(document.point->Name(), u"Point");
}

TEST_F(EditHistoryTest, TellsTheTimesBetweenWhichACurveIsAnotherOne)
{
    KeyFrameList &keys = document.point->Animation().KeyFrames("rotationZ");
    Edit beginning(document.project, u"Key frames");
    beginning.Touch(document.point, "rotationZ");
    for (const int time : {0, 1000, 2000, 3000})
        keys.Set(time, float(time));
    beginning.Commit();
    const auto listener = std::make_shared<Listener>();
    history.AddObserver(listener);
    const auto span = [&] {
        const PropertyChange &change = listener->changes.at(0).properties.at(0);
        return std::pair(change.firstTime, change.lastTime);
    };
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();

    struct Row {
        const char *what;
        std::function<void()> change;
        int first;
        int last;
    };
    const Row rows[] = {
        {"a value in the middle", [&] { keys.At(1000).SetValue(5.f); }, 0, 2000},
        {"the first", [&] { keys.At(0).SetValue(7.f); }, kMin, 1000},
        {"the last moves", [&] { keys.Move(keys.At(3000).ID(), 3500); }, 2000, kMax},
        {"one goes", [&] { keys.Remove(1000); }, 0, 2000},
        {"one comes", [&] { keys.Set(500, 1.f); }, 0, 1000},
        {"all go", [&] { keys.Clear(); }, kMin, kMax},
    };
    for (const bool wholeProperty : {true, false}) {
        for (const Row &row : rows) {
            SCOPED_TRACE(row.what);
            const std::vector<KyID> ids = keys.Identifiers();
            Edit edit(document.project, u"Curve");
            if (wholeProperty)
                edit.Touch(document.point, "rotationZ");
            else
                for (const KyID &id : ids)
                    edit.TouchKeyFrame(PropertiesOf(document.point), "rotationZ", id, ObjectKind::Layer,
                                       document.point->ID());
            if (!wholeProperty && row.what == std::string("one comes")) {
                edit.Drop(); // its ID is not known yet
                continue;
            }
            row.change();
            edit.Commit();
            EXPECT_EQ(span(), std::pair(row.first, row.last));
            history.Undo();
            EXPECT_EQ(span(), std::pair(row.first, row.last));
            EXPECT_EQ(keys.Identifiers(), ids);
        }
    }
}

TEST_F(EditHistoryTest, KeepsAnEditSmall)
{
    Turn(1, u"");
    EXPECT_LT(history.Size(), 1000U);
    const auto &track = document.sequence->VideoTracks()[0];
    for (int i = 0; i < 10000; ++i) {
        const auto object = VisualObject::Create(document.inner, document.sequence);
        object->SetParentTrackID(track->ID());
        object->SetEndFrame(i + 101);
        track->Objects().Insert(object, i + 100);
    }
    history.SetChecksAnnouncements(false);
    const std::size_t before = history.Size();
    Edit move(document.project, u"Move");
    move.Touch(track->Objects()[500]);
    track->Objects().Move(track->Objects()[500], 7, true);
    move.Commit();
    Edit shift(document.project, u"Shift");
    shift.ShiftFrom(track, 0, 3);
    shift.Commit();
    EXPECT_LT(history.Size() - before, 4000U);
}
