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
};

/// What a report shows.
struct ReportContent {
    std::vector<ReportPicture> compositions;
    std::vector<ReportPicture> timeline; ///< none without a sequence
    std::vector<ReportPicture> curves;
    std::size_t curvesLeftOut = 0;
    std::vector<ReportPicture> tree;
    std::vector<LeftOutLayer> leftOut; ///< of the pictures of compositions
    std::vector<project::Finding> findings;
};

/// One HTML page without scripts, which works from a folder on disk.
std::string ReportPage(const project::Project &project, const ReportContent &content);

} // namespace marlet::tool
