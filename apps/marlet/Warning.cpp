#include "Warning.h"

#include "Output.h"

#include <cstdio>

namespace marlet::tool
{

void Warn(const std::string &file, const std::string &message)
{
    const std::string line = OneLine(file) + ": warning: " + OneLine(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace marlet::tool
