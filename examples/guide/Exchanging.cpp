#include "Exchanging.h"

#include "Sphere.h"

#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>

namespace guide
{

// The sequence for other programs, and what these do not see of it. Paths of media are relative to the
// folder.
std::vector<std::string> ToTimeline(const std::shared_ptr<Project> &project, const WideString &folder,
                                    std::string &text)
{
    LoadReport report;
    ExchangeOptions options;
    options.folder = folder;
    options.load.report = &report;
    text = ExchangeFormat::ByName("otio")->Write(project, options);
    std::vector<std::string> unseen;
    for (const LoadEntry &entry : report.Entries())
        unseen.push_back(entry.what);
    return unseen;
}

// The project of such a text, with what another program has changed. The lists of instances are left to the
// host, as after a load.
std::shared_ptr<Project> FromTimeline(const std::string &text, const WideString &folder,
                                      const std::shared_ptr<AbstractPluginManager> &plugins)
{
    const EffectFactory effects;
    ExchangeOptions options;
    options.folder = folder;
    options.load.keepUnknown = true;
    options.plugins = plugins;
    options.effects = &effects;
    return ExchangeFormat::ByName("otio")->Read(text, options);
}

} // namespace guide
