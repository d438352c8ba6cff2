#pragma once

#include "Document.h"

#include <marlet/animation/KeyFrameList.h>
#include <marlet/animation/PropertyValue.h>

#include <vector>

namespace marlet::tool
{

/// Puts layers into a composition and animates them. Moments are fractions of the composition's length, from
/// 0 to 1, so that the animation fits any number of frames.
class Scene
{
public:
    struct Moment {
        double at;
        project::PropertyValue value;
    };

    explicit Scene(CompositionPointer composition) : composition_(std::move(composition)) {}

    /// Adds the layer behind those that are there, from a moment to the end, on the parent if there is one.
    void Add(const LayerPointer &layer, const LayerPointer &parent, double start = 0);

    /// Straight from value to value.
    void Animate(const LayerPointer &layer, const char *property, const std::vector<Moment> &moments) const;
    /// Slow out of every value and slow into the next one.
    void AnimateEased(const LayerPointer &layer, const char *property,
                      const std::vector<Moment> &moments) const;
    /// From value to value at once.
    void AnimateInSteps(const LayerPointer &layer, const char *property,
                        const std::vector<Moment> &moments) const;
    /// A position that runs round an ellipse, which it starts slowly and ends slowly.
    void AnimateOrbit(const LayerPointer &layer, float radiusX, float radiusY, int turns,
                      int keyFramesPerTurn) const;

    /// A moment in the relative time of the layer.
    int Time(const project::AbstractLayer &layer, double at) const;

private:
    project::KeyFrameList Keys(const LayerPointer &layer, const std::vector<Moment> &moments,
                               project::KeyFrameType type) const;
    CompositionPointer composition_;
};

} // namespace marlet::tool
