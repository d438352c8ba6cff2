#pragma once

#include "document/Document.h"

#include <functional>
#include <string>

namespace marlet::tool
{

/// Takes a file of a report, and tells the name that it gave it: the stem with a number and the ending.
using ReportSink =
    std::function<std::string(const std::string &stem, const std::string &ending, const std::string &bytes)>;

/// Makes the pictures of a report, hands them out, and returns the page that shows them. The head is more
/// markup for the page's own, as for a page that follows a file; the policy is what that needs beyond what
/// every report may do, in the words of Content-Security-Policy.
std::string MakeReport(const ProjectPointer &project, const ReportSink &add, const std::string &head = {},
                       const std::string &policy = {});

} // namespace marlet::tool
