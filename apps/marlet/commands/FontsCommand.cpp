#include "info/InfoParts.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/layers/FontCache.h>

namespace marlet::tool
{

using project::FontCache;

namespace
{

std::vector<std::string> FamilyNames(const FontCache &cache)
{
    std::vector<std::string> names;
    for (const FontCache::Font &font : cache.FontFamilies())
        names.push_back(project::ToUtf8(font.family));
    return names;
}

void WriteText(const FontCache::FontList &fonts, Output &output)
{
    for (const FontCache::Font &font : fonts)
        output.Line("  " + Quoted(font.fullName) + "  family " + Quoted(font.family) + ", " +
                    OneLine(project::ToUtf8(font.fileName)));
}

void WriteJson(const FontCache::FontList &fonts, Output &output)
{
    for (const FontCache::Font &font : fonts) {
        JsonWriter json = BeginJson("font");
        json.Member("full_name", font.fullName).Member("family", font.family).Member("file", font.fileName);
        EndJson(json, output);
    }
}

void Run(const Arguments &arguments, Output &output)
{
    const FontCache cache(FontCache::Charset{});
    const bool asksForFamily = !arguments.Operands().empty();
    const FontCache::FontList fonts =
        asksForFamily ? cache.FontStyles(project::FromUtf8(arguments.Operand(0))) : cache.FontFamilies();
    if (asksForFamily && fonts.IsEmpty())
        throw NoSuch("font family", arguments.Operand(0), FamilyNames(cache));
    if (arguments.Has("--json")) {
        JsonWriter json = BeginJson("fonts");
        EndJson(json.Member("folder", cache.FontsPath()), output);
        WriteJson(fonts, output);
    } else {
        output.Line(OneLine(project::ToUtf8(cache.FontsPath())));
        WriteText(fonts, output);
    }
}

} // namespace

const CommandSpec &FontsCommand()
{
    static const CommandSpec command{"fonts",
                                     "the machine's TrueType fonts: one of each family, or all of a family",
                                     "[FAMILY] [--json]",
                                     0,
                                     1,
                                     {{"--json", "", "one JSON object a line"}},
                                     Run,
                                     "fonts \"DejaVu Sans\""};
    return command;
}

} // namespace marlet::tool
