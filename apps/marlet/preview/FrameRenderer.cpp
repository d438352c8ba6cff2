#include "FrameRenderer.h"

#include "GuiSession.h"
#include "Markers.h"
#include "ShownKey.h"
#include "TextPainter.h"
#include "Values.h"
#include "View.h"

#include <marlet/animation/PropertyValue.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/ImageAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/Project.h>
#include <marlet/project/SolidAsset.h>

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr int kLongestSide = 8192;

/// A composition's frame in square pixels.
QSize FrameSize(const AudioVideoSettings &settings)
{
    const double width = settings.Width() * settings.PixelAspectRatioValue();
    return {static_cast<int>(std::clamp(std::round(width), 1.0, static_cast<double>(kLongestSide))),
            std::clamp(settings.Height(), 1, kLongestSide)};
}

double OpacityOf(const AbstractLayer &layer, int time)
{
    return std::clamp(static_cast<double>(NumberOr(layer.Animation(), "opacity", time, 100)) / 100, 0.0, 1.0);
}

bool IsInSpace(const AbstractLayer &layer)
{
    return layer.Dimensions() != LayerDimensions::TwoD;
}

/// Puts one picture in the place of another as far as it covers that.
void Mix(QImage &canvas, const QImage &with, const MaskCoverage &coverage, double opacity)
{
    const int whole = qRound(opacity * 255);
    const int width = canvas.width();
    auto covered = coverage.begin();
    for (int y = 0; y < canvas.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(canvas.scanLine(y));
        const auto *other = reinterpret_cast<const QRgb *>(with.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            const int share = coverage.empty() ? whole : *covered++ * whole / 255;
            const auto mixed = [share](int from, int to) {
                return (from * (255 - share) + to * share + 127) / 255;
            };
            if (row[x] != other[x])
                row[x] =
                    qRgba(mixed(qRed(row[x]), qRed(other[x])), mixed(qGreen(row[x]), qGreen(other[x])),
                          mixed(qBlue(row[x]), qBlue(other[x])), mixed(qAlpha(row[x]), qAlpha(other[x])));
        }
    }
}

const AssetList &AssetsOf(const ProjectPointer &project)
{
    return std::as_const(*project).Assets();
}

} // namespace

FrameRenderer::FrameRenderer(ProjectPointer project, std::shared_ptr<SharedPictures> shared)
    : project_(std::move(project)), shared_(std::move(shared))
{
    RequireGuiSession();
}

QImage FrameRenderer::Render(const CompositionPointer &composition, int frame, QSize size)
{
    frame_ = frame;
    const QImage picture = Draw(composition, frame);
    return size.isEmpty() ? picture : picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage FrameRenderer::Draw(const CompositionPointer &composition, int frame)
{
    QImage canvas(FrameSize(composition->Settings()), QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    const View view = ViewOf(composition, frame, canvas.size());
    open_.push_back(composition->ID());
    const CompositionAsset::LayerList &layers = std::as_const(*composition).Layers();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        if ((*layer)->IsVisible() && frame >= (*layer)->StartFrame() && frame < (*layer)->EndFrame())
            Try(composition, **layer, [&] { DrawLayer({composition, frame, view, canvas}, **layer); });
    open_.pop_back();
    return canvas;
}

View FrameRenderer::ViewOf(const CompositionPointer &composition, int frame, QSize picture)
{
    const auto camera = std::dynamic_pointer_cast<const CameraLayer>(composition->ActiveCameraLayer(frame));
    std::optional<View> view;
    if (camera)
        Try(composition, *camera, [&] { view.emplace(project_, *composition, camera, frame, picture); });
    return view ? *view : View(project_, *composition, nullptr, frame, picture);
}

void FrameRenderer::Try(const CompositionPointer &composition, const AbstractLayer &layer,
                        const std::function<void()> &work)
{
    try {
        work();
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const boost::bad_get &) {
        LeaveOut(composition, layer, "A property holds a value of another type than it should");
    } catch (const std::exception &exception) {
        LeaveOut(composition, layer, exception.what());
    }
}

void FrameRenderer::LeaveOut(const CompositionPointer &composition, const AbstractLayer &layer,
                             const std::string &why)
{
    if (leftOutLayers_.insert(&layer).second)
        leftOut_.push_back(
            {"layer \"" + ToUtf8(layer.Name()) + "\" of composition \"" + ToUtf8(composition->Name()) + "\"",
             why, &layer, frame_});
}

void FrameRenderer::DrawLayer(const Scene &scene, const AbstractLayer &layer)
{
    const int time = layer.GlobalFrameToRelativeTime(scene.frame, AssetsOf(project_));
    switch (layer.Type()) {
    case LayerType::Grade:
        return DrawGrade(scene, layer, time);
    case LayerType::Asset:
    case LayerType::Text:
        break;
    default:
        return DrawMarker(scene, layer, time);
    }
    const Surface surface = FinishedOf(scene, layer, time);
    if (surface.picture.isNull())
        return;
    const View::Matrix world = layer.WorldTransformationAtTime(time, project_, true);
    const auto place = scene.view.OfPlane(world, IsInSpace(layer), surface);
    if (!place)
        return;
    QPainter painter(&scene.canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setOpacity(OpacityOf(layer, time));
    painter.setTransform(place->toPicture);
    painter.setPen(Qt::NoPen);
    painter.setBrush(surface.picture);
    painter.drawPolygon(place->visible);
}

void FrameRenderer::DrawGrade(const Scene &scene, const AbstractLayer &layer, int time)
{
    Surface surface{scene.canvas, {}, scene.canvas.size()};
    const auto &grade = dynamic_cast<const GradeLayer &>(layer);
    ApplyEffects(surface, grade.Effects(), time, LayersOf(scene));
    // A grade changes what is in the frame, and no more.
    const QRect frame(surface.corner, surface.content);
    const QImage graded = surface.picture.rect() == frame ? surface.picture : surface.picture.copy(frame);
    const auto coverage = CoverageOf(grade.Masks(), {scene.canvas, {}, scene.canvas.size()}, time);
    Mix(scene.canvas, graded, *coverage, OpacityOf(layer, time));
}

void FrameRenderer::DrawMarker(const Scene &scene, const AbstractLayer &layer, int time)
{
    QPainter painter(&scene.canvas);
    painter.setRenderHint(QPainter::Antialiasing);
    const View::Matrix world = layer.WorldTransformationAtTime(time, project_, true);
    PaintMarker(painter, layer, time, [&](const kytl::matl::KyPoint<3, float> &point) {
        return scene.view.OfPoint(world, IsInSpace(layer), point);
    });
}

Surface FrameRenderer::FinishedOf(const Scene &scene, const AbstractLayer &layer, int time)
{
    const auto make = [&] {
        Surface surface = ContentOf(scene, layer);
        if (!surface.picture.isNull())
            Finish(scene, layer, time, surface);
        return surface;
    };
    const std::optional<ShownKey> key = KeyOf(scene, layer, time);
    return key ? *shared_->surfaces.Get(key->Bytes(), make) : make();
}

bool FrameRenderer::IsStill(const AbstractLayer &layer) const
{
    if (layer.Type() == LayerType::Text)
        return true;
    const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
    const auto asset = shown ? shown->Asset(AssetsOf(project_)) : nullptr;
    return asset && (asset->Type() == AssetType::Solid || asset->Type() == AssetType::Image);
}

std::optional<ShownKey> FrameRenderer::KeyOf(const Scene &scene, const AbstractLayer &layer, int time) const
{
    if (!IsStill(layer))
        return std::nullopt;
    ShownKey key("finished");
    key.Add(&layer);
    const auto add = [&](const auto &masks, const auto &effects) {
        key.Add(masks, time);
        key.Add(effects, time);
        return !effects.empty() || !masks.empty();
    };
    try {
        const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
        const auto *text = dynamic_cast<const TextLayer *>(&layer);
        if (!(shown ? add(shown->Masks(), shown->Effects()) : text && add(text->Masks(), text->Effects())))
            return std::nullopt;
    } catch (const std::exception &) {
        // Drawing says what is wrong, if it meets that at all.
        return std::nullopt;
    }
    const bool areStill = std::all_of(key.IDs().begin(), key.IDs().end(), [&](const kytl::KyID &id) {
        const LayerPointer other = scene.composition->FindLayerByID(id);
        return !other || IsStill(*other);
    });
    return areStill ? std::optional(key) : std::nullopt;
}

Surface FrameRenderer::ContentOf(const Scene &scene, const AbstractLayer &layer)
{
    if (const auto *text = dynamic_cast<const TextLayer *>(&layer)) {
        ShownKey key("text");
        key.Add(&layer);
        return *shared_->surfaces.Get(key.Bytes(), [text] { return PaintText(*text); });
    }
    Surface surface;
    const auto *shown = dynamic_cast<const AssetLayer *>(&layer);
    if (!shown)
        return surface;
    const std::shared_ptr<AbstractAsset> asset = shown->Asset(AssetsOf(project_));
    if (!asset)
        LeaveOut(scene.composition, layer,
                 "The asset " + shown->AssetID().ToNarrowString() + " that it shows does not exist");
    const bool isGone = asset && !asset->HasVideo() && asset->IsOffline() && shown->AssetHadVideo();
    if (!shown->HasVideo() && !isGone)
        return surface;
    surface.picture = PictureOf(scene, *shown);
    surface.content = surface.picture.size();
    // The matrices know nothing of a clip that is gone: what stands for it lies in the middle, moved by the
    // layer's position.
    if (isGone) {
        const int time = layer.GlobalFrameToRelativeTime(scene.frame, AssetsOf(project_));
        const auto position = ValueOr(layer.Animation(), "position", time, kytl::matl::KyPoint<3, float>{});
        surface.origin = QPointF(static_cast<double>(position.X), static_cast<double>(position.Y)) -
                         QRectF(QPointF(), surface.content).center();
    }
    return surface;
}

QImage FrameRenderer::PictureOf(const Scene &scene, const AssetLayer &layer)
{
    const std::shared_ptr<AbstractAsset> asset = layer.Asset(AssetsOf(project_));
    if (const auto solid = std::dynamic_pointer_cast<SolidAsset>(asset))
        return AssetPictures::PictureOf(*solid);
    if (const auto image = std::dynamic_pointer_cast<ImageAsset>(asset))
        return shared_->assets.PictureOf(*image);
    if (const auto media = std::dynamic_pointer_cast<MediaAsset>(asset))
        return AssetPictures::FrameOf(*media, scene.composition->Settings().FrameRate(),
                                      layer.AssetInstanceStart() + scene.frame - layer.StartFrame());
    if (const auto nested = std::dynamic_pointer_cast<CompositionAsset>(asset))
        return PictureOfNested(scene, layer, nested);
    return {};
}

QImage FrameRenderer::PictureOfNested(const Scene &scene, const AssetLayer &layer,
                                      const CompositionPointer &nested)
{
    if (std::find(open_.begin(), open_.end(), nested->ID()) != open_.end()) {
        LeaveOut(scene.composition, layer,
                 "It shows the composition \"" + ToUtf8(nested->Name()) + "\" inside of itself");
        return AssetPictures::Placeholder("a composition inside of itself: " + ToUtf8(nested->Name()),
                                          {nested->Width(), nested->Height()});
    }
    const double rate = nested->Settings().FrameRate() / scene.composition->Settings().FrameRate();
    const double frame =
        (layer.AssetInstanceStart() + static_cast<double>(scene.frame) - layer.StartFrame()) * rate;
    if (!(frame >= 0 && frame < nested->Settings().FrameCount()))
        return {};
    return Draw(nested, static_cast<int>(frame))
        .scaled(nested->Width(), nested->Height(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

LayerPictures FrameRenderer::LayersOf(const Scene &scene)
{
    return [this, &scene](const kytl::KyID &id) {
        const LayerPointer other = scene.composition->FindLayerByID(id);
        return other ? ContentOf(scene, *other).picture : QImage();
    };
}

void FrameRenderer::Finish(const Scene &scene, const AbstractLayer &layer, int time, Surface &surface)
{
    const auto finish = [&](const auto &masks, const auto &effects) {
        if (const auto coverage = CoverageOf(masks, surface, time); !coverage->empty())
            Cut(surface.picture, *coverage);
        ApplyEffects(surface, effects, time, LayersOf(scene));
    };
    if (const auto *shown = dynamic_cast<const AssetLayer *>(&layer))
        finish(shown->Masks(), shown->Effects());
    else if (const auto *text = dynamic_cast<const TextLayer *>(&layer))
        finish(text->Masks(), text->Effects());
}

std::shared_ptr<const MaskCoverage>
FrameRenderer::CoverageOf(const kytl::KyList<std::shared_ptr<Mask>, std::vector> &masks,
                          const Surface &surface, int time)
{
    const auto make = [&] { return CoverageOfMasks(masks, surface, time); };
    ShownKey key("coverage");
    for (const int number : {surface.picture.width(), surface.picture.height(), surface.corner.x(),
                             surface.corner.y(), surface.content.width(), surface.content.height()})
        key.Add(number);
    try {
        key.Add(masks, time);
    } catch (const std::exception &) {
        return std::make_shared<const MaskCoverage>(make());
    }
    return shared_->coverages.Get(key.Bytes(), make);
}

} // namespace marlet::tool
