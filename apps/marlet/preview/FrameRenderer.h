#pragma once

#include "AssetPictures.h"
#include "Filters.h"
#include "document/Document.h"

#include <QImage>

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace marlet::project
{
class AssetLayer;
}

namespace marlet::tool
{

class View;

/// A layer that no frame shows, since it could not be asked for what is drawn of it.
struct LeftOutLayer {
    std::string place; ///< layer "Moon" of composition "Orbit"
    std::string why;
};

/// Draws frames of compositions: exact in place and time, plain in looks. Layers are drawn from the end of
/// the stack to its front; solids, stills, media, nested compositions and text with their masks and effects;
/// grades over what lies below; null points as crosses, lights as billboards, ribbons as lines. Blend modes,
/// shadows and depth of field are left to finer renderers. A QGuiApplication is made if there is none.
///
/// Belongs to one thread, and must not outlive its project's media.
class FrameRenderer
{
public:
    explicit FrameRenderer(ProjectPointer project);

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
    /// The layer's content without masks and effects; null if it has none to see.
    Surface ContentOf(const Scene &scene, const project::AbstractLayer &layer);
    QImage PictureOf(const Scene &scene, const project::AssetLayer &layer);
    QImage PictureOfNested(const Scene &scene, const project::AssetLayer &layer,
                           const CompositionPointer &nested);
    /// For effects that look at other layers, while the scene is drawn.
    LayerPictures LayersOf(const Scene &scene);
    /// Masks, and then effects.
    void Finish(const Scene &scene, const project::AbstractLayer &layer, int time, Surface &surface);

    ProjectPointer project_;
    AssetPictures pictures_;
    std::vector<kytl::KyID> open_; ///< the compositions around the one that is being drawn
    std::vector<LeftOutLayer> leftOut_;
    std::unordered_set<const project::AbstractLayer *> leftOutLayers_;
};

} // namespace marlet::tool
