#pragma once

#include <marlet/foundation/Strings.h>

#include <string>

namespace marlet::project
{

/// A name as the words of a refusal show it.
inline std::string InQuotes(const std::string &name)
{
    return '"' + name + '"';
}

inline std::string InQuotes(const WideString &name)
{
    return InQuotes(ToUtf8(name));
}

} // namespace marlet::project
