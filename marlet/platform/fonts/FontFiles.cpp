#include <marlet/platform/fonts/FontFiles.h>

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace marlet::project::platform
{

namespace
{

struct DestroyConfig {
    void operator()(FcConfig *config) const { FcConfigDestroy(config); }
};
/// Read anew each time, so that fonts which come and go are seen, and let go of again: the current one of the
/// process belongs to the host.
using Config = std::unique_ptr<FcConfig, DestroyConfig>;

std::string_view View(const FcChar8 *text)
{
    return reinterpret_cast<const char *>(text);
}

std::string_view Text(const FcPattern *font, const char *object, int index = 0)
{
    FcChar8 *text = nullptr;
    return FcPatternGetString(font, object, index, &text) == FcResultMatch ? View(text) : std::string_view();
}

double Number(const FcPattern *font, const char *object, double otherwise)
{
    double number = 0;
    return FcPatternGetDouble(font, object, 0, &number) == FcResultMatch ? number : otherwise;
}

bool IsTrue(const FcPattern *font, const char *object)
{
    FcBool value = FcFalse;
    return FcPatternGetBool(font, object, 0, &value) == FcResultMatch && value == FcTrue;
}

/// The English name, or else the first.
std::string_view Name(const FcPattern *font, const char *object, const char *languageObject)
{
    for (int i = 0; !Text(font, object, i).empty(); ++i)
        if (Text(font, languageObject, i) == "en")
            return Text(font, object, i);
    return Text(font, object);
}

std::string_view Family(const FcPattern *font)
{
    return Name(font, FC_FAMILY, FC_FAMILYLANG);
}

std::string_view FullName(const FcPattern *font)
{
    return Name(font, FC_FULLNAME, FC_FULLNAMELANG);
}

bool HasFamily(const FcPattern *font, std::string_view family)
{
    for (int i = 0; !Text(font, FC_FAMILY, i).empty(); ++i)
        if (Text(font, FC_FAMILY, i) == family)
            return true;
    return false;
}

/// A font with axes is listed once for each of its named styles, and once more for all of them, which is no
/// face.
bool IsListed(const FcPattern *font)
{
    return Text(font, FC_FONTFORMAT) == "TrueType" && IsTrue(font, FC_OUTLINE) &&
           !IsTrue(font, FC_VARIABLE) && !Family(font).empty() && !FullName(font).empty() &&
           !FullName(font).starts_with('@');
}

/// How far a face is from its family's regular one. The names decide between equals.
auto Irregularity(const FcPattern *font)
{
    return std::tuple(std::abs(Number(font, FC_SLANT, FC_SLANT_ROMAN) - FC_SLANT_ROMAN),
                      std::abs(Number(font, FC_WIDTH, FC_WIDTH_NORMAL) - FC_WIDTH_NORMAL),
                      std::abs(Number(font, FC_WEIGHT, FC_WEIGHT_REGULAR) - FC_WEIGHT_REGULAR),
                      FullName(font), Text(font, FC_FILE));
}

FontFace Face(const FcPattern *font)
{
    return {FromUtf8(Family(font)), FromUtf8(FullName(font)), FromUtf8(Text(font, FC_FILE))};
}

std::vector<const FcPattern *> ListedFonts(FcConfig *config)
{
    std::vector<const FcPattern *> listed;
    const FcFontSet *fonts = FcConfigGetFonts(config, FcSetSystem);
    for (int i = 0; fonts && i < fonts->nfont; ++i)
        if (IsListed(fonts->fonts[i]))
            listed.push_back(fonts->fonts[i]);
    return listed;
}

std::vector<FontFace> RegularFaces(const std::vector<const FcPattern *> &fonts)
{
    std::map<std::string_view, const FcPattern *> regular;
    for (const FcPattern *font : fonts) {
        const FcPattern *&best = regular.try_emplace(Family(font), font).first->second;
        if (Irregularity(font) < Irregularity(best))
            best = font;
    }
    std::vector<FontFace> faces;
    for (const auto &[family, font] : regular)
        faces.push_back(Face(font));
    return faces;
}

/// The folders that the configuration names, in its order, without separators at their ends.
std::vector<std::string> ExistingFolders(FcConfig *config)
{
    std::vector<std::string> existing;
    FcStrList *folders = config ? FcConfigGetFontDirs(config) : nullptr;
    while (const FcChar8 *next = folders ? FcStrListNext(folders) : nullptr) {
        std::string folder(View(next));
        while (folder.size() > 1 && folder.ends_with('/'))
            folder.pop_back();
        std::error_code error;
        if (std::filesystem::is_directory(folder, error))
            existing.push_back(folder);
    }
    if (folders)
        FcStrListDone(folders);
    return existing;
}

} // namespace

WideString SystemFontsFolder()
{
    const Config config(FcInitLoadConfig());
    const std::vector<std::string> folders = ExistingFolders(config.get());
    if (folders.empty())
        return {};
    // Those of the user stand first.
    const auto shared = std::ranges::find(folders, "/usr/share/fonts");
    return FromUtf8(shared == folders.end() ? folders.front() : *shared);
}

std::vector<FontFace> FontFaces(const WideString &family)
{
    const Config config(FcInitLoadConfigAndFonts());
    if (!config)
        return {};
    const std::vector<const FcPattern *> fonts = ListedFonts(config.get());
    if (family.empty())
        return RegularFaces(fonts);
    const NarrowString name = ToUtf8(family);
    std::vector<FontFace> faces;
    for (const FcPattern *font : fonts)
        if (HasFamily(font, name))
            faces.push_back(Face(font));
    return faces;
}

} // namespace marlet::project::platform
