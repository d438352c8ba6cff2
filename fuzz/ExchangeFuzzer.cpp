// The first byte picks a format, from "a" on, the others are a text in it. Whatever they are, the text is
// refused in the way that the interface names, or gives a project that is written, and reads as the same
// again.

#include "support/Fuzz3DEffect.h"
#include "support/FuzzInput.h"
#include "support/FuzzPlugins.h"

#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/operations/OperationException.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

using namespace marlet::project;

namespace
{

std::shared_ptr<Project> NewProject(const ExchangeOptions &options)
{
    const auto project = Project::Create(options.plugins);
    project->Assets().All().Add(
        CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100));
    return project;
}

/// Null for a text that is refused.
std::shared_ptr<Project> Read(const ExchangeFormat &format, std::string_view text,
                              const ExchangeOptions &options)
{
    try {
        if (format.CanRead())
            return format.Read(text, options);
        if (!format.CanReadInto())
            return nullptr;
        auto project = NewProject(options);
        format.ReadInto(project, text, options);
        return project;
    } catch (const ExchangeException &) {
    } catch (const OperationException &) {
    }
    return nullptr;
}

void WriteAgain(const ExchangeFormat &format, const std::shared_ptr<Project> &project,
                const ExchangeOptions &options)
{
    try {
        const NarrowString text = format.Write(project, options);
        if (format.CanRead() && !Read(format, text, options))
            Fail("what was written is not read");
    } catch (const OperationException &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    static const Fuzz3DEffectFactory effects;
    const auto &formats = ExchangeFormat::All();
    const auto picked = static_cast<std::uint8_t>(bytes[0] - 'a');
    const ExchangeFormat &format = *formats[picked % formats.size()];
    const std::string_view text(reinterpret_cast<const char *>(bytes) + 1, size - 1);
    LoadReport report;
    ExchangeOptions options;
    options.load.report = &report;
    options.load.keepUnknown = true;
    options.plugins = std::make_shared<FuzzPluginManager>();
    options.effects = &effects;
    format.Recognises(text.substr(0, 4096));
    if (const auto project = Read(format, text, options); project && format.CanWrite())
        WriteAgain(format, project, options);
    return 0;
}
