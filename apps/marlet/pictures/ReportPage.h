#pragma once

#include "document/Document.h"
#include "document/ProjectCheck.h"
#include "preview/FrameRenderer.h"

#include <string>
#include <vector>

namespace marlet::tool
{

/// A picture beside the page, by its file name.
struct ReportPicture {
    std::string file;
    std::string caption;
    QSize size; ///< pixels, which keep its place before it is there; empty if it is not known
};

/// An animated property.
struct ReportCurve {
    std::string file; ///< the large picture; empty if there is none
    std::string composition;
    std::string layer;
    std::string property;
    std::size_t keyFrames;
    std::string sparkline; ///< SVG to stand in the page
};

/// What a report shows.
struct ReportContent {
    std::vector<ReportPicture> compositions;
    std::vector<ReportPicture> timeline; ///< none without a sequence
    std::vector<ReportCurve> curves;
    std::size_t curvesLeftOut = 0;
    std::vector<ReportPicture> tree;
    std::vector<LeftOutLayer> leftOut; ///< of the pictures of compositions
    std::vector<project::Finding> findings;
};

/// One HTML page, which works from a folder on disk and has no script of its own. It forbids itself all but
/// its style and the pictures beside it, and what a policy allows besides; the head is markup for its own.
std::string ReportPage(const project::Project &project, const ReportContent &content, const std::string &head,
                       const std::string &policy);

} // namespace marlet::tool
