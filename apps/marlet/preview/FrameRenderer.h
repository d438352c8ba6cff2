#pragma once

#include "Filters.h"
#include "SharedPictures.h"
#include "document/Document.h"

#include <QImage>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace marlet::project
{
class AssetLayer;
}

namespace marlet::tool
{

class ShownKey;
class View;

/// A layer that no frame shows, since it could not be asked for what is drawn of it.
struct LeftOutLayer {
    std::string place; ///< layer "Moon" of composition "Orbit"
    std::string why;
    const project::AbstractLayer *layer;
    int frame; ///< in which that was first so, of the composition that was rendered
};

/// Draws frames of compositions: exact in place and time, plain in looks. Layers are drawn from the end of
/// the stack to its front; solids, stills, media, nested compositions and text with their masks and effects;
/// grades over what lies below; null points as crosses, lights as billboards, ribbons as lines. Blend modes,
/// shadows and depth of field are left to finer renderers. A QGuiApplication is made if there is none.
///
/// Belongs to one thread, and must not outlive its project's media. The project stays as it is while there
/// are renderers of it. Those that share pictures may draw side by side, and draw the same as one alone.
class FrameRenderer
{
public:
    explicit FrameRenderer(ProjectPointer project,
                           std::shared_ptr<SharedPictures> shared = std::make_shared<SharedPictures>());

    /// A premultiplied picture in square pixels, transparent where nothing is, fit to a size that is not
    /// empty.
    QImage Render(const CompositionPointer &composition, int frame, QSize size = {});

    /// Of all frames so far, each layer once.
    const std::vector<LeftOutLayer> &LeftOut() const { return leftOut_; }

private:
    /// What is being drawn.
    struct Scene {
        const CompositionPointer &composition;
        int frame;
        const View &view;
        QImage &canvas;
    };

    QImage Draw(const CompositionPointer &composition, int frame);
    View ViewOf(const CompositionPointer &composition, int frame, QSize picture);
    /// Leaves the layer out if the work throws.
    void Try(const CompositionPointer &composition, const project::AbstractLayer &layer,
             const std::function<void()> &work);
    void LeaveOut(const CompositionPointer &composition, const project::AbstractLayer &layer,
                  const std::string &why);
    void DrawLayer(const Scene &scene, const project::AbstractLayer &layer);
    void DrawGrade(const Scene &scene, const project::AbstractLayer &layer, int time);
    void DrawMarker(const Scene &scene, const project::AbstractLayer &layer, int time);
    /// The layer's content with its masks and effects.
    Surface FinishedOf(const Scene &scene, const project::AbstractLayer &layer, int time);
    /// All that the finished content is made from; nothing if it is not worth keeping, or not known.
    std::optional<ShownKey> KeyOf(const Scene &scene, const project::AbstractLayer &layer, int time) const;
    /// Whether a layer's content is the same in all frames.
    bool IsStill(const project::AbstractLayer &layer) const;
    /// The layer's content without masks and effects; null if it has none to see.
    Surface ContentOf(const Scene &scene, const project::AbstractLayer &layer);
    QImage PictureOf(const Scene &scene, const project::AssetLayer &layer);
    QImage PictureOfNested(const Scene &scene, const project::AssetLayer &layer,
                           const CompositionPointer &nested);
    /// For effects that look at other layers, while the scene is drawn.
    LayerPictures LayersOf(const Scene &scene);
    /// Masks, and then effects.
    void Finish(const Scene &scene, const project::AbstractLayer &layer, int time, Surface &surface);
    std::shared_ptr<const MaskCoverage>
    CoverageOf(const kytl::KyList<std::shared_ptr<project::Mask>, std::vector> &masks, const Surface &surface,
               int time);

    ProjectPointer project_;
    std::shared_ptr<SharedPictures> shared_;
    int frame_ = 0;                ///< that is being rendered
    std::vector<kytl::KyID> open_; ///< the compositions around the one that is being drawn
    std::vector<LeftOutLayer> leftOut_;
    std::unordered_set<const project::AbstractLayer *> leftOutLayers_;
};

} // namespace marlet::tool
