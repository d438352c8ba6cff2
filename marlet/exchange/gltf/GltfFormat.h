#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// glTF 2.0 in one file: how the cameras and the layers of a composition move. Only written.
///
/// Both sides have Y up and Z towards who looks, and cameras that look along -Z, so that nothing is turned.
/// 100 pixels are a metre; times are seconds from the first frame of the composition. Nodes stand side by
/// side in the scene and have what parents, auto-orientation and anchor points make of a layer: place, turn
/// and size are worked out at each frame; of places and sizes those frames are kept between which straight
/// lines run.
///
/// | of the composition | in glTF |
/// | --- | --- |
/// | cameras, or the one that is named; a lens of 50 mm if there is none | cameras |
/// | zoom, clip distances | the field of view of the first frame; later ones are lost |
/// | depth of field | lost |
/// | media, images, solids, compositions, texts | rectangles of their size; what they show is lost |
/// | solids | their colour |
/// | points | nodes without content |
/// | lights, grades, particles, 3D effects | nodes without content: lost |
/// | layers of two dimensions | stand on the plane of the frame |
/// | first and last frames of layers, opacity, blending, effects, masks | lost; the frames are among the
/// extras | | skewed layers | without the skew |
class GltfFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "gltf"; }
    std::string_view Title() const override { return "glTF 2.0"; }
    std::vector<std::string_view> Endings() const override { return {".gltf"}; }
    std::string_view Holds() const override { return "the motion of cameras and layers"; }

    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;
};

} // namespace marlet::project
