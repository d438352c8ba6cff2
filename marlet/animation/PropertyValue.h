#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/foundation/KyVector.h>
#include <marlet/foundation/Orientation3D.h>
#include <marlet/foundation/Scale3D.h>

#include <boost/variant/get.hpp>
#include <boost/variant/variant.hpp>

namespace marlet::project
{

/// The value of a property or a key frame: exactly one of fourteen alternatives, by default the int 0.
///
/// Two values are equal if they hold the same alternative and that alternative's == says so: exactly for
/// numbers, colours and IDs, within a small tolerance for points, vectors, orientations and scales.
/// boost::get of another alternative throws boost::bad_get.
using PropertyValue =
    boost::variant<int, unsigned int, unsigned char, float, double, bool, Scale3D, Orientation3D,
                   kytl::KyColorRGBA_32f, kytl::matl::KyPoint<2, float>, kytl::matl::KyPoint<3, float>,
                   kytl::matl::KyVector<2, float>, kytl::matl::KyVector<3, float>, kytl::KyID>;

} // namespace marlet::project
