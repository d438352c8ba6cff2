#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

// What the matrices of a layer are made of. Times are the layer's relative time in milliseconds.

/// @throws boost::bad_get if the property is of another type
template <class T> T ValueAt(const PropertyManager &properties, const char *name, int time)
{
    const PropertyValue value = properties.ValueAtTime(name, time);
    return boost::get<T>(value);
}

/// The assets of a project. @throws std::invalid_argument if there is no project
const AssetList &AssetsOf(const std::shared_ptr<Project> &project);

/// The layer's properties. Values belong to a layer in a composition, so it must be there.
/// @throws std::runtime_error if the composition is missing
const PropertyManager &PropertiesInComposition(const AbstractLayer &layer,
                                               const std::shared_ptr<Project> &project);

/// The translation from "anchorPoint" to the origin. Z keeps its sign.
AbstractLayer::Matrix AnchorMatrix(const AbstractLayer &layer, int time,
                                   const std::shared_ptr<Project> &project);

/// The translation to "position".
AbstractLayer::Matrix PositionMatrix(const AbstractLayer &layer, int time,
                                     const std::shared_ptr<Project> &project);

/// The translation from the middle of a frame of that size to the origin, for content that is measured from
/// the frame's corner.
AbstractLayer::Matrix MiddleMatrix(int width, int height);

/// Position, rotation and scale of a layer that has all three.
AbstractLayer::Matrix PlacementMatrix(const AbstractLayer &layer, int time,
                                      const std::shared_ptr<Project> &project, bool avoidZeroScale);

/// Position and rotation of a camera or light, turned by what its auto-orientation gives.
AbstractLayer::Matrix AimedMatrix(const AbstractLayer &layer, const AbstractLayer::Matrix &autoOrientation,
                                  int time, const std::shared_ptr<Project> &project);

} // namespace marlet::project
