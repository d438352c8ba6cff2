#pragma once

#include <marlet/platform/files/WholeFile.h>
#include <marlet/project/ProjectFile.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace marlet::tool
{

using project::RequireWritable;

/// @throws FileException, as ProjectFile::ReadText
inline project::WideString ReadTextFile(const std::string &path)
{
    return project::ProjectFile::ReadText(path);
}

/// @throws FileException, as WriteWholeFile
inline void WriteFile(const std::string &path, std::string_view bytes)
{
    project::WriteWholeFile(path, bytes);
}

/// Whether two paths lead to one file, over links of either kind. What is no regular file, such as a
/// terminal, keeps nothing that could be lost.
inline bool IsSameFile(const std::string &a, const std::string &b)
{
    std::error_code error;
    return std::filesystem::is_regular_file(a, error) && std::filesystem::equivalent(a, b, error);
}

} // namespace marlet::tool
