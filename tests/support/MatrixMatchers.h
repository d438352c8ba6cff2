#pragma once

#include <gmock/gmock.h>

#include <cmath>

namespace marlet::test
{

inline double Element(const auto &matrix, int row, int column)
{
    if constexpr (requires { matrix(row, column); })
        return matrix(row, column);
    else
        return matrix[row][column];
}

/// Every element within the tolerance, which grows with the element.
MATCHER_P2(IsMatrixNear, expected, tolerance, "")
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const double is = Element(arg, row, column);
            const double want = Element(expected, row, column);
            if (!(std::abs(is - want) <= tolerance * (1 + std::abs(want)))) {
                *result_listener << "at " << row << ", " << column << ": " << is << " where " << want
                                 << " is expected";
                return false;
            }
        }
    }
    return true;
}

MATCHER_P4(IsPointNear, x, y, z, tolerance, "")
{
    return std::abs(double(arg.X) - x) <= tolerance && std::abs(double(arg.Y) - y) <= tolerance &&
           std::abs(double(arg.Z) - z) <= tolerance;
}

} // namespace marlet::test
