#pragma once

#include "document/Document.h"
#include "serving/HttpServer.h"

#include <map>
#include <string>

namespace marlet::tool
{

/// The report of a project as pages below a path that nobody guesses. The page asks which version there is
/// and loads itself again when there is another one.
class ServedPages
{
public:
    ServedPages();

    /// "/3f…/", where the page is.
    const std::string &Path() const { return path_; }
    /// Makes the report anew. If it cannot be made, the old one stays. @throws as Document::Open
    void Update(const std::string &file);
    /// What is there under a path.
    HttpAnswer At(const std::string &path) const;

private:
    std::string path_;
    std::map<std::string, HttpAnswer> pages_; ///< by their names
    int version_ = 0;
};

} // namespace marlet::tool
