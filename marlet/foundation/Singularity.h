#pragma once

#include <marlet/foundation/KyMatrix.h>

namespace kytl::matl
{

/// Whether a product of matrices, whose elements were rounded to float one after the other, may owe its
/// determinant to that rounding alone. So may one whose determinant is 0 as a float.
bool IsSingularProduct(const KyMatrix<4, 4, float> &product);

} // namespace kytl::matl
