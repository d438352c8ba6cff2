#pragma once

#include <marlet/animation/PropertyManager.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::test
{

using Handle = kytl::matl::KyVector<2, float>;
using Point2D = kytl::matl::KyPoint<2, float>;
using Point3D = kytl::matl::KyPoint<3, float>;

project::KeyFrame Key(int time, const project::PropertyValue &value, const Handle &incoming = {},
                      const Handle &outgoing = {},
                      project::KeyFrameType type = project::KeyFrameType::Linear);

/// Seven values of each alternative, in the order of the alternatives, with extremes among them.
std::vector<std::vector<project::PropertyValue>> SevenValuesOfEach();

/// Key frames that evaluation, copying and saving must each get through.
struct OddCurve {
    std::string name;
    bool isSpatial;
    project::KeyFrameList keys;

    /// A manager whose only property, "odd", has these key frames.
    std::shared_ptr<project::PropertyManager> Manager() const;
    /// At, beside and between the key frames.
    std::vector<int> Times() const;
};

std::vector<OddCurve> OddCurves();

} // namespace marlet::test
