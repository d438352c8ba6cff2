#include "Bindings.h"
#include "Listing.h"
#include "Owners.h"
#include "Values.h"

#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>

namespace marlet::python
{

namespace
{

void BindMask(py::class_<MaskHandle> &type)
{
    BindIdentity<MaskHandle>(type);
    BindFact<MaskHandle>(
        type, "id", [](const Mask &mask) { return mask.ID().ToNarrowString(); }, "The text of its ID.");
    BindField<MaskHandle>(
        type, "name", u"Rename mask", [](const Mask &mask) { return mask.Name(); },
        [](Mask &mask, const WideString &name) { mask.SetName(name); }, "Its name.");
    BindField<MaskHandle>(
        type, "visible", u"Set visibility", [](const Mask &mask) { return mask.IsVisible(); },
        [](Mask &mask, bool visible) { mask.SetVisible(visible); }, "Whether it counts.");
    BindField<MaskHandle>(
        type, "closed", u"Close mask", [](const Mask &mask) { return mask.Path().IsClosed(); },
        [](Mask &mask, bool closed) { mask.Path().SetClosed(closed); },
        "Whether the last point joins the first, which takes at least three.");
    type.def_property_readonly(
        "points",
        [](const MaskHandle &mask) {
            mask.Get();
            return MakeListing<PathPoint>(
                [mask] { return std::as_const(*mask.Get()).Path().Points(); },
                [mask](const std::shared_ptr<PathPoint> &point) { return Show(mask, point); });
        },
        "The points of its outline, in order.");
    BindProperties<MaskHandle>(type);
}

} // namespace

void BindMasks(py::module_ &module)
{
    py::class_<PathPointHandle> point(
        module, "PathPoint",
        "A point of an outline: its position and both handles are properties, in pixels.");
    BindIdentity<PathPointHandle>(point);
    BindFact<PathPointHandle>(
        point, "id", [](const PathPoint &shown) { return shown.ID().ToNarrowString(); },
        "The text of its ID.");
    BindProperties<PathPointHandle>(point);

    py::class_<MaskHandle> mask(module, "Mask", "A shape on a layer: an outline and properties.");
    BindMask(mask);
}

} // namespace marlet::python
