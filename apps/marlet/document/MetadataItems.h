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

/// The project is as it was when this returns; it is not const because its assets are put aside meanwhile.
std::vector<MetadataItem> MetadataItems(project::Project &project);

} // namespace marlet::tool
