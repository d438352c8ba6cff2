#include <marlet/operations/layers/MaskOperations.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/MotionPath.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>

#include <cmath>
#include <numbers>

namespace marlet::project
{

namespace
{

using Vector = kytl::matl::KyVector<2, float>;

/// How long the handles of a quarter of a circle are, as a part of the radius: the curve meets the circle in
/// its middle, and is 0.027 % outside at most.
constexpr double kCircleHandle = 4 * (std::numbers::sqrt2 - 1) / 3;

AssetLayer::MaskList &MasksOf(AbstractLayer &layer)
{
    if (auto *picture = dynamic_cast<AssetLayer *>(&layer))
        return picture->Masks();
    if (auto *grade = dynamic_cast<GradeLayer *>(&layer))
        return grade->Masks();
    if (auto *text = dynamic_cast<TextLayer *>(&layer))
        return text->Masks();
    throw OperationException("Layer " + Quoted(layer.Name()) + " is of a kind that has no masks");
}

void RequireSize(const PictureRectangle &rectangle)
{
    if (!(rectangle.width > 0 && rectangle.height > 0 && std::isfinite(rectangle.width) &&
          std::isfinite(rectangle.height)))
        throw OperationException("The size of a mask is above 0");
}

/// A point and the handles before and behind it.
struct Corner {
    float x = 0;
    float y = 0;
    Vector left;
    Vector right;
};

void AddPoint(MotionPath &path, const Corner &corner)
{
    const std::shared_ptr<PathPoint> point = PathPoint::Create(corner.x, corner.y, path.ID());
    if (!(corner.left == Vector() && corner.right == Vector()))
        point->SetLinear(false);
    point->Animation().StaticValue("leftHandle") = corner.left;
    point->Animation().StaticValue("rightHandle") = corner.right;
    path.Points().Add(point);
}

std::shared_ptr<Mask> AddMask(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<AbstractLayer> &layer, const WideString &name,
                              const std::vector<Corner> &corners)
{
    Require(layer, "layer");
    Edit edit(project, u"Add mask");
    edit.Touch(layer);
    AssetLayer::MaskList &masks = MasksOf(*layer);
    const std::shared_ptr<Mask> mask = Mask::Create(name);
    mask->SetParentLayerID(layer->ID());
    for (const Corner &corner : corners)
        AddPoint(mask->Path(), corner);
    mask->Path().SetClosed(true);
    masks.Add(mask);
    edit.Commit();
    return mask;
}

float HandleOf(float radius)
{
    return static_cast<float>(radius * kCircleHandle);
}

} // namespace

std::shared_ptr<Mask> AddRectangleMask(const std::shared_ptr<Project> &project,
                                       const std::shared_ptr<AbstractLayer> &layer, const WideString &name,
                                       const PictureRectangle &rectangle, float radius)
{
    RequireSize(rectangle);
    const auto &[centre, width, height] = rectangle;
    if (!(radius >= 0 && radius <= width / 2 && radius <= height / 2))
        throw OperationException("The radius of a corner is between 0 and half of the shorter side");
    const float left = centre.X - width / 2;
    const float right = centre.X + width / 2;
    const float bottom = centre.Y - height / 2;
    const float top = centre.Y + height / 2;
    if (radius == 0)
        return AddMask(
            project, layer, name,
            {{left, top, {}, {}}, {right, top, {}, {}}, {right, bottom, {}, {}}, {left, bottom, {}, {}}});
    const float handle = HandleOf(radius);
    return AddMask(project, layer, name,
                   {{left + radius, top, {-handle, 0}, {}},
                    {right - radius, top, {}, {handle, 0}},
                    {right, top - radius, {0, handle}, {}},
                    {right, bottom + radius, {}, {0, -handle}},
                    {right - radius, bottom, {handle, 0}, {}},
                    {left + radius, bottom, {}, {-handle, 0}},
                    {left, bottom + radius, {0, -handle}, {}},
                    {left, top - radius, {}, {0, handle}}});
}

std::shared_ptr<Mask> AddEllipseMask(const std::shared_ptr<Project> &project,
                                     const std::shared_ptr<AbstractLayer> &layer, const WideString &name,
                                     const PictureRectangle &rectangle)
{
    RequireSize(rectangle);
    const auto &[centre, width, height] = rectangle;
    const float right = width / 2;
    const float top = height / 2;
    const float x = HandleOf(right);
    const float y = HandleOf(top);
    return AddMask(project, layer, name,
                   {{centre.X, centre.Y + top, {-x, 0}, {x, 0}},
                    {centre.X + right, centre.Y, {0, y}, {0, -y}},
                    {centre.X, centre.Y - top, {x, 0}, {-x, 0}},
                    {centre.X - right, centre.Y, {0, -y}, {0, y}}});
}

} // namespace marlet::project
