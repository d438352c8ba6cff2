#pragma once

#include <marlet/foundation/Export.h>

#include <memory>

namespace marlet::project
{

class AbstractLayer;
class Project;

/// Attaches a layer to a parent, or detaches it, so that it stays where it is on screen at one time.
///
/// "position", "scale" and rotation are rewritten; if they are animated, all key frames move by the same
/// amount, so that the animation keeps its shape. Times are the layer's relative time in milliseconds. A
/// frame of reference that cannot be inverted leaves the values that depend on it as they are; the link is
/// set all the same.
///
/// @throws as the matrices of AbstractLayer
class MARLET_EXPORT ParentHelper
{
public:
    static void Parent(const std::shared_ptr<Project> &project, int time,
                       const std::shared_ptr<AbstractLayer> &parent, std::shared_ptr<AbstractLayer> &layer);
    static void RemoveParent(const std::shared_ptr<Project> &project, int time,
                             std::shared_ptr<AbstractLayer> &layer);
    /// Changes the values and leaves the link alone, for a caller that changes it itself. An empty new parent
    /// stands for none.
    static void UpdatePosition(const std::shared_ptr<Project> &project, int time,
                               std::shared_ptr<AbstractLayer> &layer,
                               const std::shared_ptr<AbstractLayer> &newParent);
};

} // namespace marlet::project
