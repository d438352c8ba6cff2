#include "LayerDrawing.h"

#include <marlet/history/Edit.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/operations/assets/AssetUses.h>
#include <marlet/operations/assets/FolderOperations.h>
#include <marlet/operations/assets/MediaImport.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>

#include <tests/project/ClipFiles.h>

#include <gtest/gtest.h>

namespace marlet::test
{

namespace
{

/// With a folder in a folder, and a picture of the first solid's size on the timeline.
struct Bin : CheckedProject {
    std::shared_ptr<BinFolder> outer = BinFolder::Create(u"Outer");
    std::shared_ptr<BinFolder> within = BinFolder::Create(u"Within");
    std::shared_ptr<SolidAsset> blue = SolidAsset::Create(u"Blue", {0, 0, 1, 1}, 64, 32, PAR::Square);

    Bin()
    {
        Root().Folders().Add(outer);
        outer->Folders().Add(within);
        within->SetParentFolderID(outer->ID());
    }

    std::string Drawn() const { return DrawnFolders(*project); }
    std::string Shown(const AbstractAsset &asset) const
    {
        std::string uses;
        for (const UseOfAsset &use : UsesOf(*project, asset))
            uses += (use.composition ? ToUtf8(use.composition->Name()) + "." : "Sequence.") +
                    ToUtf8(use.instance->Name()) + " ";
        return uses;
    }
};

TEST(ProjectOperations, KeepFoldersUsesAndListsOfInstancesInStep)
{
    struct Row {
        const char *what;
        std::function<void(Bin &)> operation;
        const char *folders;
        const char *usesOfRed;
        const char *usesOfInner;
    };
    constexpr char kRed[] = "Main.Picture ";
    constexpr char kInner[] = "Sequence.Inner Sequence.Inner Sequence.Inner ";
    const Row rows[] = {
        {"add", [](Bin &b) { AddAsset(b.project, b.blue, b.within); },
         "/ Main:0 Inner:0 Red:1\n/Outer/\n/Outer/Within/ Blue:0\n", kRed, kInner},
        {"remove with what shows it", [](Bin &b) { RemoveAsset(b.project, b.inner, UsesOfRemoved::Remove); },
         "/ Main:0 Red:1\n/Outer/\n/Outer/Within/\n", kRed, ""},
        {"remove a composition, which shows the others no more",
         [](Bin &b) { RemoveAsset(b.project, b.composition, UsesOfRemoved::Refuse); },
         "/ Inner:0 Red:0\n/Outer/\n/Outer/Within/\n", "", kInner},
        {"replace a still by a composition", [](Bin &b) { ReplaceAsset(b.project, b.solid, b.inner); },
         "/ Main:0 Inner:4 Red:0\n/Outer/\n/Outer/Within/\n", "",
         "Main.Picture Sequence.Inner Sequence.Inner Sequence.Inner "},
        {"replace one use", [](Bin &b) { ReplaceUses(b.project, {b.second}, b.solid); },
         "/ Main:0 Inner:0 Red:2\n/Outer/\n/Outer/Within/\n", "Main.Picture Sequence.Inner ",
         "Sequence.Inner Sequence.Inner "},
        {"move an asset", [](Bin &b) { MoveToFolder(b.project, b.solid, b.outer); },
         "/ Main:0 Inner:0\n/Outer/ Red:1\n/Outer/Within/\n", kRed, kInner},
        {"move a folder", [](Bin &b) { MoveToFolder(b.project, b.within, nullptr); },
         "/ Main:0 Inner:0 Red:1\n/Outer/\n/Within/\n", kRed, kInner},
        {"add a folder", [](Bin &b) { AddFolder(b.project, u"New", b.outer); },
         "/ Main:0 Inner:0 Red:1\n/Outer/\n/Outer/Within/\n/Outer/New/\n", kRed, kInner},
        {"remove a folder, whose content moves up",
         [](Bin &b) {
             Edit both(b.project, u"Move and remove");
             MoveToFolder(b.project, b.solid, b.outer);
             RemoveFolder(b.project, b.outer);
             both.Commit();
         },
         "/ Main:0 Inner:0 Red:1\n/Within/\n", kRed, kInner},
        {"rename a folder", [](Bin &b) { RenameFolder(b.project, b.within, u"Deep"); },
         "/ Main:0 Inner:0 Red:1\n/Outer/\n/Outer/Deep/\n", kRed, kInner},
        {"duplicate", [](Bin &b) { DuplicateComposition(b.project, b.composition, u"Twin"); },
         "/ Main:0 Inner:0 Red:2 Twin:0\n/Outer/\n/Outer/Within/\n", "Main.Picture Twin.Picture ", kInner},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        Bin bin;
        Perform(bin.project, [&] { row.operation(bin); });
        EXPECT_EQ(bin.Drawn(), row.folders);
        EXPECT_EQ(bin.Shown(*bin.solid), row.usesOfRed);
        EXPECT_EQ(bin.Shown(*bin.inner), row.usesOfInner);
    }
}

TEST(ProjectOperations, RefuseWithTheReason)
{
    Bin b;
    const auto refuse = [&](const std::function<void()> &operation, const std::string &words) {
        Refuse(b.project, operation, words);
    };
    refuse([&] { AddAsset(b.project, b.solid); }, "Asset \"Red\" is in the project already");
    refuse([&] { AddAsset(b.project, b.blue, BinFolder::Create(u"Loose")); },
           "Folder \"Loose\" is not in the project");
    refuse([&] { RemoveAsset(b.project, b.blue, UsesOfRemoved::Remove); },
           "Asset \"Blue\" is not in the project");
    refuse([&] { RemoveAsset(b.project, b.solid, UsesOfRemoved::Refuse); },
           "Asset \"Red\" is used: layer \"Picture\" of composition \"Main\"");
    refuse([&] { RemoveAsset(b.project, b.inner, UsesOfRemoved::Refuse); },
           "Asset \"Inner\" is used: object \"Inner\" of the sequence, object \"Inner\" of the sequence, "
           "object \"Inner\" of the sequence");
    refuse([&] { ReplaceAsset(b.project, b.solid, b.composition); },
           "Composition \"Main\" would show itself");
    refuse([&] { ReplaceAsset(b.project, b.inner, b.solid); },
           "Asset \"Red\" has no sound for object \"Inner\"");
    b.composition->Settings().SetFrameCount(99);
    refuse(
        [&] {
            ReplaceUses(b.project, {b.first, b.second}, b.composition);
        },
        "Frames 40 to 100 are shown by \"Inner\", asset \"Main\" has 99 frames");
    b.inner->Settings().SetFrameCount(99);
    refuse([&] { ReplaceAsset(b.project, b.solid, b.inner); },
           "Frames 0 to 100 are shown by \"Picture\", asset \"Inner\" has 99 frames");
    refuse([&] { MoveToFolder(b.project, b.outer, b.within); }, "Folder \"Outer\" would be in itself");
    const std::shared_ptr<BinFolder> root(b.project, &b.Root());
    refuse([&] { RemoveFolder(b.project, root); }, "The root folder stays");
    refuse([&] { MoveToFolder(b.project, root, b.outer); }, "Folder \"Root\" would be in itself");
    refuse([&] { RemoveFolder(b.project, BinFolder::Create(u"Else")); },
           "Folder \"Else\" is not in the project");
}

TEST(ProjectOperations, NestLayersBehindOneThatShowsThem)
{
    struct Row {
        const char *what;
        std::function<std::vector<std::shared_ptr<AbstractLayer>>(CheckedProject &)> nested;
        const char *outer;
        const char *inner;
        LayerDimensions dimensions;
    };
    const Row rows[] = {
        {"one in the middle, which others hang on and which refers to others",
         [](CheckedProject &c) { return std::vector<std::shared_ptr<AbstractLayer>>{c.layer}; },
         "Point [0..100)\nTitle [0..100)\nNest [20..60) Nest+20\n", "Picture [20..60) Red+0 effect tracker\n",
         LayerDimensions::TwoD},
        {"several with what is between them, in whatever order",
         [](CheckedProject &c) {
             return std::vector<std::shared_ptr<AbstractLayer>>{c.layer, c.text, c.point};
         },
         "Nest [0..100) Nest+0\n",
         "Point [0..100) parent=Picture\nTitle [0..100)\n"
         "Picture [20..60) Red+0 effect>Title tracker>Point\n",
         LayerDimensions::TwoD},
        {"in space",
         [](CheckedProject &c) {
             c.layer->SetDimensions(LayerDimensions::ThreeD);
             return std::vector<std::shared_ptr<AbstractLayer>>{c.layer};
         },
         "Point [0..100)\nTitle [0..100)\nNest [20..60) Nest+20\n", "Picture [20..60) Red+0 effect tracker\n",
         LayerDimensions::ThreeDContent},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        CheckedProject document;
        document.layer->SetStartFrame(20);
        document.layer->SetEndFrame(60);
        document.layer->Animation().StaticValue("position") = kytl::matl::KyPoint<3, float>{30, 40, 0};
        document.point->SetParentLayer(document.layer);
        const auto layers = row.nested(document);
        const auto world = [&] {
            return document.point->WorldTransformationAtTime(0, document.project, false);
        };
        const auto before = world();
        std::shared_ptr<AssetLayer> nest;
        Perform(document.project, [&] { nest = NestLayers(document.project, layers, u"Nest"); });
        const auto inner = std::dynamic_pointer_cast<CompositionAsset>(
            nest->Asset(std::as_const(*document.project).Assets()));
        EXPECT_EQ(DrawnLayers(document, *document.composition), row.outer);
        EXPECT_EQ(DrawnLayers(document, *inner), row.inner);
        EXPECT_EQ(nest->Dimensions(), row.dimensions);
        EXPECT_EQ(inner->Settings(), document.composition->Settings());
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(world()(i / 4, i % 4), before(i / 4, i % 4), 1e-4);
    }
}

TEST(ProjectOperations, ImportFilesOnceWithACompositionOfTheirFormat)
{
    const ClipFiles files;
    const WideString clip = files.Write("clip.mkv", 100);
    files.WritePicture("still.png", 50);
    const WideString still = files.Path("still.png");
    CheckedProject document;
    std::vector<std::shared_ptr<AbstractAsset>> assets;
    Perform(document.project, [&] { assets = ImportFiles(document.project, {clip, still, clip}, nullptr); });
    EXPECT_EQ(DrawnFolders(*document.project), "/ Main:0 Inner:0 Red:1 clip.mkv:0 still.png:0\n");
    EXPECT_EQ(assets[0], assets[2]);
    EXPECT_EQ(assets[1]->Type(), AssetType::Image);
    EXPECT_EQ(ImportFiles(document.project, {still})[0], assets[1]);

    const AudioVideoSettings &model = std::as_const(*document.composition).Settings();
    for (const auto &asset : {assets[0], assets[1]}) {
        std::shared_ptr<CompositionAsset> made;
        Perform(document.project, [&] { made = AddCompositionOf(document.project, asset, model); });
        const AudioVideoSettings &settings = std::as_const(*made).Settings();
        EXPECT_EQ(settings.Width(), ClipFiles::kWidth);
        EXPECT_EQ(settings.Height(), ClipFiles::kHeight);
        EXPECT_EQ(settings.FrameCount(), asset == assets[0] ? ClipFiles::kFrames : model.FrameCount());
        EXPECT_EQ(made->Layers().front()->EndFrame(), settings.FrameCount());
    }

    const WideString gone = files.Path("gone.mkv");
    Refuse(
        document.project,
        [&] {
            ImportFiles(document.project, {clip, gone});
        },
        "There is no file \"" + ToUtf8(gone) + "\"");
}

TEST(ProjectOperations, RelinkAndGoBackToTheFormerFile)
{
    const ClipFiles files;
    CheckedProject document;
    const auto imported = ImportFiles(document.project, {files.Write("a.mkv", 10)});
    const auto asset = std::dynamic_pointer_cast<MediaAsset>(imported[0]);
    document.Show(asset)->SetEndFrame(ClipFiles::kFrames);
    Perform(document.project, [&] { RelinkAsset(document.project, asset, files.Write("b.mkv", 20, 25)); });
    EXPECT_EQ(asset->Filename(), files.Path("b.mkv"));
    EXPECT_EQ(asset->VideoStream()->FrameCount(), 25);
}

} // namespace

} // namespace marlet::test
