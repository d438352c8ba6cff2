#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

struct FontCache_Impl;

/// The TrueType fonts of the machine, each with its file. Sorted by full name, by 16-bit code unit. One
/// thread at a time may build a FontCache or call FontStyles.
class MARLET_EXPORT FontCache
{
public:
    enum class Charset : int {};

    struct Font {
        WideString family;
        WideString fullName; ///< of the face, such as family and style together
        WideString fileName;
    };

    using FontList = kytl::KyList<Font, std::vector>;

    /// Looks the machine's fonts through. The character set plays no part.
    /// @throws std::runtime_error "Cannot get system fonts path"
    explicit FontCache(Charset charset);
    FontCache(const FontCache &) = delete;
    FontCache &operator=(const FontCache &) = delete;
    ~FontCache();

    /// One face of each family.
    const FontList &FontFamilies() const;
    /// All faces of a family, looked up anew; of an empty name what FontFamilies has.
    FontList FontStyles(const WideString &family) const;
    /// The system's fonts folder, without a separator at the end.
    const WideString &FontsPath() const;

private:
    std::unique_ptr<FontCache_Impl> impl_;
};

} // namespace marlet::project
