#pragma once

#include <marlet/foundation/Export.h>

#include <cstddef>
#include <string_view>

namespace marlet::project
{

/// A place in a text in UTF-8. Lines end with LF, CR or both.
struct MARLET_EXPORT TextPlace {
    std::size_t offset = 0; ///< in bytes
    int line = 1;           ///< from 1 on
    int column = 1;         ///< in characters, from 1 on

    /// Goes on to an offset, which is no smaller.
    void GoTo(std::string_view text, std::size_t to);

    bool operator==(const TextPlace &) const = default;
};

} // namespace marlet::project
