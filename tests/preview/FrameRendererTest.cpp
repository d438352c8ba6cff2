#include "preview/FrameRenderer.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace marlet::tool
{

using namespace project;

namespace
{

using Point = kytl::matl::KyPoint<3, float>;

constexpr int kWidth = 400;
constexpr int kHeight = 300;

struct Place {
    double x;
    double y;
};

/// A project with a composition of 400 x 300 and white markers in it.
class PreviewTest : public testing::Test
{
protected:
    CompositionPointer AddComposition()
    {
        auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::None, 100);
        composition->Settings().SetWidth(kWidth);
        composition->Settings().SetHeight(kHeight);
        composition->Settings().SetFrameRate(25);
        project_->Assets().All().Add(composition);
        return composition;
    }

    template <class Layer>
    std::shared_ptr<Layer> Add(const CompositionPointer &composition, std::shared_ptr<Layer> layer)
    {
        layer->SetParentComposition(composition);
        layer->SetEndFrame(100);
        composition->Layers().push_front(layer);
        return layer;
    }

    std::shared_ptr<AssetLayer> AddMarker(const CompositionPointer &composition, const Point &position,
                                          int size = 9)
    {
        auto solid = SolidAsset::Create(u"Marker", {1, 1, 1, 1}, size, size, PAR::Square);
        project_->Assets().All().Add(solid);
        auto layer = Add(composition, AssetLayer::Create(solid));
        layer->Animation().StaticValue("position") = position;
        return layer;
    }

    /// The middle of what is drawn, in pixels from the upper left corner.
    static Place Middle(const QImage &picture)
    {
        double sum = 0;
        Place middle{0, 0};
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                const double weight = qAlpha(picture.pixel(x, y));
                sum += weight;
                middle.x += weight * (x + 0.5);
                middle.y += weight * (y + 0.5);
            }
        return {middle.x / sum, middle.y / sum};
    }

    void ExpectAt(const CompositionPointer &composition, const Place &place, double tolerance = 0.5)
    {
        const Place middle = Middle(FrameRenderer(project_).Render(composition, 10));
        EXPECT_NEAR(middle.x, place.x, tolerance);
        EXPECT_NEAR(middle.y, place.y, tolerance);
    }

    /// Where the matrix puts the middle of a marker, seen from a point on the Z axis straight ahead.
    Place MatrixPlace(const AssetLayer &layer, double distance, int size = 9) const
    {
        const auto world = layer.WorldTransformationAtTime(400, project_, false);
        const float half = static_cast<float>(size) / 2;
        const Point middle = world.TransformPoint({half, half, 0});
        const double shrink = distance / (distance - static_cast<double>(middle.Z));
        return {kWidth / 2.0 + shrink * static_cast<double>(middle.X),
                kHeight / 2.0 - shrink * static_cast<double>(middle.Y)};
    }

    ProjectPointer project_ = Project::Create(nullptr);
};

} // namespace

TEST_F(PreviewTest, PutsAFlatLayerWhereItsPositionIsWithYUpwards)
{
    const CompositionPointer composition = AddComposition();
    const auto marker = AddMarker(composition, {60, 45, 0});
    marker->Animation().StaticValue("rotationZ") = 30.f;
    ExpectAt(composition, {260, 105});
}

TEST_F(PreviewTest, CarriesAChildRoundWithItsParent)
{
    const CompositionPointer composition = AddComposition();
    const auto parent = AddMarker(composition, {20, -10, 0});
    parent->SetVisible(false);
    parent->Animation().StaticValue("rotationZ") = 90.f;
    AddMarker(composition, {50, 0, 0})->SetParentLayer(parent);
    // Turned clockwise, what is to the right comes to lie below.
    ExpectAt(composition, {220, 210});
}

TEST_F(PreviewTest, SeesSpaceThroughTheCameraAtItsZoomsDistance)
{
    const CompositionPointer composition = AddComposition();
    const auto marker = AddMarker(composition, {80, 40, -250});
    marker->SetDimensions(LayerDimensions::ThreeD);
    Add(composition, CameraLayer::Create(u"Camera", 0, 500, 500, 0));
    // 750 away in place of 500: two thirds of the way out.
    ExpectAt(composition, {kWidth / 2 + 80 / 1.5, kHeight / 2 - 40 / 1.5});
    marker->Animation().StaticValue("rotationY") = 50.f;
    const Place place = MatrixPlace(*marker, 500);
    ExpectAt(composition, place, 1);
}

TEST_F(PreviewTest, ShowsNothingOfWhatIsBehindTheCamera)
{
    const CompositionPointer composition = AddComposition();
    AddMarker(composition, {0, 0, 600})->SetDimensions(LayerDimensions::ThreeD);
    Add(composition, CameraLayer::Create(u"Camera", 0, 500, 500, 0));
    const QImage picture = FrameRenderer(project_).Render(composition, 10);
    QImage empty = picture;
    empty.fill(Qt::transparent);
    EXPECT_EQ(picture, empty);
}

TEST_F(PreviewTest, DrawsNestedCompositionsAtTheirOwnTimeAndTurnsDownACircle)
{
    const CompositionPointer inner = AddComposition();
    const auto marker = AddMarker(inner, {30, 20, 0});
    marker->SetStartFrame(25);
    const CompositionPointer outer = AddComposition();
    const auto nested = Add(outer, AssetLayer::Create(inner));
    nested->Animation().StaticValue("position") = Point{10, -40, 0};
    nested->SetAssetInstanceStart(20);
    // Frame 10 of the outer one is frame 30 of the inner one.
    ExpectAt(outer, {240, 170});

    Add(inner, AssetLayer::Create(outer))->SetName(u"Back");
    const auto stray = Add(outer, AssetLayer::Create(SolidAsset::Create(u"Stray", {}, 1, 1, PAR::Square)));
    stray->SetName(u"Stray");
    FrameRenderer renderer(project_);
    EXPECT_FALSE(renderer.Render(outer, 10).isNull());
    ASSERT_EQ(renderer.LeftOut().size(), 2u);
    EXPECT_EQ(renderer.LeftOut()[1].place.find("layer \"Stray\""), 0u);
    EXPECT_EQ(renderer.LeftOut()[0].place.find("layer \"Back\""), 0u);
}

TEST_F(PreviewTest, PutsTextIntoItsFrameAndAPlaceholderWhereAClipWouldBe)
{
    const CompositionPointer composition = AddComposition();
    const auto text = Add(composition, TextLayer::Create(u"Text", 200, 20));
    text->Animation().StaticValue("position") = Point{30, 60, 0};
    const auto format = text->TextFormat(u"DejaVu Sans", u"Book", 20, {1, 1, 1, 1}, {0, 0, 0, 0}, 0, 0, 0);
    text->Text().Append(TextLayer::CreateCharToken(u'H', format, {}));
    text->Text().Append(TextLayer::CreateParagraphToken(TextLayer::JustificationType{1}, {}));
    // A letter in the middle of a line as high as its frame, which lies about the layer's position.
    ExpectAt(composition, {230, 90}, 5);

    text->SetVisible(false);
    const QTemporaryDir folder;
    const QString file = folder.filePath("still.png");
    ASSERT_TRUE(QImage(8, 8, QImage::Format_RGB32).save(file));
    auto clip = project_->Media().CreateMediaAsset(file.toStdU16String());
    project_->Assets().All().Add(clip);
    Add(composition, AssetLayer::Create(clip))->Animation().StaticValue("position") = Point{-20, 0, 0};
    project_->Media().RelinkMediaFile(clip, u"/not/there.mov");
    ExpectAt(composition, {180, 150});
}

TEST_F(PreviewTest, CutsByMasksWhoseOutlinesCountFromTheMiddleOfTheLayer)
{
    const CompositionPointer composition = AddComposition();
    const auto layer = AddMarker(composition, {0, 0, 0}, 100);
    const auto mask = Mask::Create(u"Upper right quarter");
    for (const auto &[x, y] :
         {std::pair(0.f, 0.f), std::pair(50.f, 0.f), std::pair(50.f, 50.f), std::pair(0.f, 50.f)})
        mask->Path().Points().Add(PathPoint::Create(x, y, mask->Path().ID()));
    mask->Path().SetClosed(true);
    layer->Masks().Add(mask);
    ExpectAt(composition, {225, 125});
    mask->SetInverted(true);
    // Three quarters of the square, a third of them each: the middle moves away from the hole.
    ExpectAt(composition, {200 - 25.0 / 3, 150 + 25.0 / 3});
}

} // namespace marlet::tool
