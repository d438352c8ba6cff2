#include <tests/checks/CheckedProject.h>

#include <marlet/history/EditHistory.h>
#include <marlet/layers/CameraLayer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace marlet::test;

namespace
{

/// The frames of the last notice, as "Main 10..60, sequence 0..100".
struct StaleListener : ChangeObserver {
    explicit StaleListener(const CheckedProject &ofDocument) : document(ofDocument) {}

    void Changed(const ChangeNotice &notice) override
    {
        std::ostringstream text;
        for (const StaleFrames &frames : notice.Stale()) {
            const auto asset = document.project->Assets().GetByID(frames.timeline);
            text << (text.tellp() > 0 ? ", " : "") << (asset ? ToUtf8(asset->Name()) : "sequence") << ' '
                 << frames.first << ".." << frames.end;
        }
        stale = text.str();
    }

    const CheckedProject &document;
    std::string stale;
};

} // namespace

/// In Main the picture stands at 10 to 60, the text hangs on the point, and the picture's effect refers to
/// the text. Inner shows a layer at 20 to 30; the timeline shows Inner at 0 to 100.
TEST(StaleFrames, AreThoseThatShowWhatChanged)
{
    CheckedProject document;
    document.layer->SetStartFrame(10);
    document.layer->SetEndFrame(60);
    document.text->SetStartFrame(20);
    document.text->SetEndFrame(50);
    document.text->SetParentLayer(document.point);
    const auto shown = document.Show(document.solid, document.inner);
    shown->SetStartFrame(20);
    shown->SetEndFrame(30);
    const auto camera = CameraLayer::Create(u"Camera", 1, 100, 100, 1);
    camera->SetParentComposition(document.composition);
    camera->SetStartFrame(5);
    camera->SetEndFrame(15);
    document.composition->Layers().Add(camera);
    const auto nested = document.Show(document.composition, document.inner);
    nested->SetStartFrame(40);
    nested->SetEndFrame(100);
    nested->SetAssetInstanceStart(10);

    const std::shared_ptr<AbstractLayer> picture = document.layer;
    KeyFrameList &keys = picture->Animation().KeyFrames("opacity");
    for (const int time : {0, 600, 1200, 1800})
        keys.Set(time, 50.f);

    EditHistory history(document.project);
    const auto listener = std::make_shared<StaleListener>(document);
    history.AddObserver(listener);

    struct Row {
        const char *what;
        std::function<void(Edit &)> change;
        const char *stale;
    };
    const Row rows[] = {
        {"a layer that nothing hangs on",
         [&](Edit &edit) {
             edit.Touch(picture);
             picture->SetBlendMode(Blend{3});
         },
         "Main 10..60, Inner 40..90, sequence 0..100"},
        {"a name",
         [&](Edit &edit) {
             edit.Touch(picture);
             picture->SetName(u"other");
         },
         ""},
        {"a text, to which the picture's effect refers",
         [&](Edit &edit) {
             edit.TouchText(document.text);
             document.text->SetMinX(-300);
         },
         "Main 10..60, Inner 40..90, sequence 0..100"},
        {"a parent, whose child is referred to",
         [&](Edit &edit) {
             edit.Touch(document.point, "rotationZ");
             document.point->Animation().StaticValue("rotationZ") = 4.f;
         },
         "Main 0..100, Inner 40..100, sequence 0..100"},
        {"a span that moves",
         [&](Edit &edit) {
             edit.Touch(picture);
             picture->MoveLayer(50);
         },
         "Main 10..100, Inner 40..100, sequence 0..100"},
        {"a layer that goes",
         [&](Edit &edit) {
             edit.TouchLayers(document.inner);
             document.inner->Layers().pop_front();
         },
         "Inner 20..30, sequence 0..100"},
        {"an asset",
         [&](Edit &edit) {
             edit.Touch(std::static_pointer_cast<AbstractAsset>(document.solid));
             document.solid->SetColor({0, 1, 0, 1});
         },
         "Main 10..60, Inner 20..90, sequence 0..100"},
        {"an object of the timeline",
         [&](Edit &edit) {
             edit.Touch(std::static_pointer_cast<AbstractSequenceObject>(document.second), "opacity");
             document.second->SetOpacity(50);
         },
         "sequence 40..100"},
        {"a transition",
         [&](Edit &edit) {
             edit.Touch(std::static_pointer_cast<PluginInstance>(document.transition), "amount");
             document.transition->Animation().StaticValue("amount") = 2.f;
         },
         "sequence 0..100"},
        {"what a host keeps for a layer",
         [&](Edit &edit) {
             struct Part : EditedPart {
                 explicit Part(const KyID &ofLayer) : EditedPart({}), layer(ofLayer) {}
                 void Exchange() override {}
                 void Describe(ChangeList &changes) const override
                 {
                     changes.Of(ObjectKind::HostObject, layer).aspects |= Aspect::Settings;
                 }
                 std::size_t Size() const override { return 0; }
                 KyID layer;
             };
             edit.Touch(std::make_unique<Part>(picture->ID()));
         },
         "Main 10..60, Inner 40..90, sequence 0..100"},
        {"a tracker",
         [&](Edit &edit) {
             edit.Touch(document.tracker);
             document.tracker->SetName(u"other");
         },
         ""},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Edit edit(document.project, u"Row");
        row.change(edit);
        edit.Commit();
        EXPECT_EQ(listener->stale, row.stale);
        history.Undo();
        EXPECT_EQ(listener->stale, row.stale);
    }

    // One key frame of a second: frames 25 to 50 of the picture, a frame more for roundings at both ends.
    Edit edit(document.project, u"Key frame");
    edit.Touch(picture, "opacity");
    keys.At(1200).SetValue(10.f);
    edit.Commit();
    EXPECT_EQ(listener->stale, "Main 24..57, Inner 54..87, sequence 0..100");
}
