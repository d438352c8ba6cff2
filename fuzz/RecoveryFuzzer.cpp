// Of any bytes something is recovered that loads, with the plug-ins that it uses and without any, or they
// have nothing of a project. A text that loads comes back the same, and what was recovered is not damaged.

#include "support/Fuzz3DEffect.h"
#include "support/FuzzInput.h"
#include "support/FuzzPlugins.h"

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/project/LoadOptions.h>
#include <marlet/project/Project.h>
#include <marlet/recovery/Recovery.h>

#include <optional>

using namespace marlet::project;

namespace
{

using Plugins = std::shared_ptr<FuzzPluginManager>;

bool Loads(const WideString &text, const Plugins &plugins)
{
    LoadOptions options;
    options.keepUnknown = true;
    try {
        Project::CreateFromXml(text, u"", plugins, Fuzz3DEffectFactory(), options);
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

bool LoadsAnyhow(const WideString &text, const Plugins &plugins)
{
    return Loads(text, plugins) && Loads(text, nullptr);
}

std::optional<WideString> Recovered(std::string_view bytes, const Plugins &plugins, LoadReport &report)
{
    try {
        return RecoverProject(bytes, u"", plugins, Fuzz3DEffectFactory(), report);
    } catch (const MessageException &) {
        return std::nullopt;
    }
}

void RequirePlaces(const LoadReport &report)
{
    std::uint64_t offset = 0;
    for (const LoadEntry &entry : report.Entries()) {
        if (entry.offset < offset || entry.line < 1 || entry.column < 1)
            Fail("an entry is out of order");
        offset = entry.offset;
    }
}

void TryBytes(std::string_view bytes, const Plugins &plugins)
{
    LoadReport report;
    const auto recovered = Recovered(bytes, plugins, report);
    RequirePlaces(report);
    // Bytes that are no UTF-8 are damaged whatever they are taken for.
    const WideString text = FromUtf8(bytes);
    const bool isWhole = ToUtf8(text) == bytes && LoadsAnyhow(text, plugins);
    if (isWhole && (!recovered || *recovered != text || report.Count() > 0))
        Fail("a whole text is changed");
    if (!recovered || isWhole)
        return;
    if (!LoadsAnyhow(*recovered, plugins))
        Fail("what was recovered does not load");
    const auto again = Recovered(ToUtf8(*recovered), plugins, report);
    if (!again || *again != *recovered || report.Count() > 0)
        Fail("what was recovered is damaged");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const auto plugins = std::make_shared<FuzzPluginManager>();
    TryBytes({reinterpret_cast<const char *>(bytes), size}, plugins);
    if (plugins->LivingInstances() != 0)
        Fail("an instance of a plug-in did not end, or ended twice");
    return 0;
}
