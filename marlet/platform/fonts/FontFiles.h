#pragma once

#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project::platform
{

/// One face of an installed font. Internal.
struct FontFace {
    WideString family;
    WideString fullName;
    WideString file;
};

/// The system's fonts folder, or the first that there is besides, without a separator at the end; empty if
/// there is none.
WideString SystemFontsFolder();

/// All faces of a family with outlines of TrueType type, in no fixed order; of an empty name one face of each
/// family. Faces whose full name begins with "@" are left out.
std::vector<FontFace> FontFaces(const WideString &family);

} // namespace marlet::project::platform
