#include <marlet/layers/FontCache.h>

#include <marlet/platform/fonts/FontFiles.h>

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace marlet::project
{

struct FontCache_Impl {
    WideString fontsPath;
    FontCache::FontList families;
};

namespace
{

FontCache::FontList SortedFonts(const WideString &family)
{
    FontCache::FontList fonts;
    for (const platform::FontFace &face : platform::FontFaces(family))
        fonts.Add({face.family, face.fullName, face.file});
    std::ranges::sort(fonts, {},
                      [](const FontCache::Font &font) { return std::tie(font.fullName, font.fileName); });
    return fonts;
}

} // namespace

FontCache::FontCache(Charset) : impl_(std::make_unique<FontCache_Impl>())
{
    impl_->fontsPath = platform::SystemFontsFolder();
    if (impl_->fontsPath.empty())
        throw std::runtime_error("Cannot get system fonts path");
    impl_->families = SortedFonts({});
}

FontCache::~FontCache() = default;

const FontCache::FontList &FontCache::FontFamilies() const
{
    return impl_->families;
}

FontCache::FontList FontCache::FontStyles(const WideString &family) const
{
    return SortedFonts(family);
}

const WideString &FontCache::FontsPath() const
{
    return impl_->fontsPath;
}

} // namespace marlet::project
