#pragma once

#include <marlet/platform/flow/PixelRegion.h>

#include <vector>

namespace marlet::project::platform
{

/// How a picture is compared with a template. The first two measure a difference, the others a likeness.
enum class TemplateMeasure : int {
    SquaredDifference,
    SquaredDifferenceNormed,
    Correlation,
    CorrelationNormed,
    Coefficient,
    CoefficientNormed,
};

/// The measure of each place where the template can lie, and the best of them.
struct TemplateScores {
    int columns = 0;
    int rows = 0;
    std::vector<float> values; ///< row after row
    int bestColumn = 0;
    int bestRow = 0;

    float At(int column, int row) const
    {
        return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                      static_cast<std::size_t>(column)];
    }
};

/// The pattern must be no larger than the image and of the same format.
/// @throws std::exception if there is no memory
TemplateScores MatchTemplate(const PixelRegion &image, const PixelRegion &pattern, TemplateMeasure measure);

} // namespace marlet::project::platform
