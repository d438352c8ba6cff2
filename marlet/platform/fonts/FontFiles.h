#pragma once

#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project::platform
{

/// One face of an installed font with outlines of TrueType type. Internal.
struct FontFace {
    WideString family;
    WideString fullName;
    WideString file;
};

/// The system's fonts folder, empty if there is none.
WideString SystemFontsFolder();

/// All faces of a family, in no fixed order; of an empty name one face of each family.
std::vector<FontFace> FontFaces(const WideString &family);

} // namespace marlet::project::platform
