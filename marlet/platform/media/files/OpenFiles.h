#pragma once

#include <cstddef>

namespace kyh::media
{

/// Bounds how many files are open at once.
class OpenFiles
{
public:
    /// Also where the process may open more.
    static constexpr std::size_t kMost = 64;
};

} // namespace kyh::media
