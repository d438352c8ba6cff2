#include "SharedMedia.h"

#include "Sphere.h"

#include <marlet/project/LoadOptions.h>

namespace guide
{

// One manager for all projects of a program, as its user has set it up.
std::shared_ptr<MediaManager> MediaOfProgram(const WideString &cacheFolder, std::size_t bytes)
{
    const auto media = std::make_shared<MediaManager>();
    media->SetIndexFolder(cacheFolder);
    media->SetCacheBudget(bytes);
    return media;
}

// What the manager has open already is not opened again, whichever project named it.
std::shared_ptr<Project> OpenText(const WideString &text,
                                  const std::shared_ptr<AbstractPluginManager> &plugins,
                                  const std::shared_ptr<MediaManager> &media, MediaProgress &progress)
{
    LoadOptions options;
    options.media = media;
    options.progress = &progress;
    return Project::CreateFromXml(text, u"", plugins, EffectFactory(), options);
}

} // namespace guide
