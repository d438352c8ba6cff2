#pragma once

#include <string>
#include <vector>

namespace bench
{

// What is measured in a process of its own, whose heap is cold: nothing that was freed before hides a page
// that is needed.

/// Runs this program with two arguments and returns the figures that it prints.
/// @throws std::runtime_error unless there are so many
std::vector<double> FiguresOf(const char *what, const std::string &file, std::size_t count);

/// What such a process prints them by.
void PrintFigures(const std::vector<double> &figures);

} // namespace bench
