#include <marlet/platform/flow/TemplateScores.h>

#include <marlet/platform/flow/MatOfRegion.h>

#include <opencv2/imgproc.hpp>

namespace marlet::project::platform
{

namespace
{

int OpenCvMethod(TemplateMeasure measure)
{
    switch (measure) {
    case TemplateMeasure::SquaredDifference:
        return cv::TM_SQDIFF;
    case TemplateMeasure::SquaredDifferenceNormed:
        return cv::TM_SQDIFF_NORMED;
    case TemplateMeasure::Correlation:
        return cv::TM_CCORR;
    case TemplateMeasure::CorrelationNormed:
        return cv::TM_CCORR_NORMED;
    case TemplateMeasure::Coefficient:
        return cv::TM_CCOEFF;
    case TemplateMeasure::CoefficientNormed:
        break;
    }
    return cv::TM_CCOEFF_NORMED;
}

} // namespace

TemplateScores MatchTemplate(const PixelRegion &image, const PixelRegion &pattern, TemplateMeasure measure)
{
    TemplateScores scores;
    scores.columns = image.width - pattern.width + 1;
    scores.rows = image.height - pattern.height + 1;
    scores.values.resize(static_cast<std::size_t>(scores.columns) * static_cast<std::size_t>(scores.rows));
    cv::Mat result(scores.rows, scores.columns, CV_32FC1, scores.values.data());
    cv::matchTemplate(MatOfRegion(image), MatOfRegion(pattern), result, OpenCvMethod(measure));

    cv::Point lowest, highest;
    cv::minMaxLoc(result, nullptr, nullptr, &lowest, &highest);
    const bool isDifference =
        measure == TemplateMeasure::SquaredDifference || measure == TemplateMeasure::SquaredDifferenceNormed;
    const cv::Point best = isDifference ? lowest : highest;
    scores.bestColumn = best.x;
    scores.bestRow = best.y;
    return scores;
}

} // namespace marlet::project::platform
