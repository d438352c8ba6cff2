#pragma once

#include <string>
#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// An entry of the project's metadata as it stands in the file.
struct MetadataItem {
    std::string type; ///< "bool", "int32_t", "float", "KyID" or "wstring"
    std::string key;
    std::string value;
};

std::vector<MetadataItem> MetadataItems(const project::Project &project);

} // namespace marlet::tool
