#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/operations/layers/PictureRectangle.h>

#include <memory>

namespace marlet::project
{

class AbstractLayer;
class Mask;
class Project;

// Masks on a layer, as one Edit each: closed outlines, clockwise from the top left corner or the top, in
// pixels from the middle of the layer's picture with Y up. A new mask comes behind those that are there. Null
// pointers are std::invalid_argument. Belongs to the thread that edits the project.
//
// @throws OperationException if the layer is of a class without masks, or a size is not above 0

/// Corners are rounded with that radius by quarters of a circle, as AddEllipseMask makes them.
MARLET_EXPORT std::shared_ptr<Mask> AddRectangleMask(const std::shared_ptr<Project> &project,
                                                     const std::shared_ptr<AbstractLayer> &layer,
                                                     const WideString &name,
                                                     const PictureRectangle &rectangle, float radius = 0);

/// The ellipse that fills the rectangle, of four points, nowhere further from it than 0.03 % of the radius.
MARLET_EXPORT std::shared_ptr<Mask> AddEllipseMask(const std::shared_ptr<Project> &project,
                                                   const std::shared_ptr<AbstractLayer> &layer,
                                                   const WideString &name, const PictureRectangle &rectangle);

} // namespace marlet::project
