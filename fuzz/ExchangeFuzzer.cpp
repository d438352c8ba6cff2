// The first byte picks a format, from "a" on, and as a capital that the text comes into a project that is
// there; the others are a text in it. Whatever they are, the text is refused in the way that the interface
// names, or gives a project that every format writes or refuses. What its own format writes is read again.

#include "support/Fuzz3DEffect.h"
#include "support/FuzzInput.h"
#include "support/FuzzPlugins.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/exchange/ExchangeException.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/layers/PointLayer.h>
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
    const auto composition = CompositionAsset::Create(u"Main", AudioVideoSettings::Preset::Hd720At25, 100);
    project->Assets().All().Add(composition);
    const auto layer = PointLayer::Create(u"Point");
    layer->SetEndFrame(100);
    layer->SetParentComposition(composition);
    layer->Animation().KeyFrames("position").Set(0, kytl::matl::KyPoint<3, float>{1, 2, 3});
    composition->Layers().Add(layer);
    return project;
}

/// Null for a text that is refused.
std::shared_ptr<Project> Read(const ExchangeFormat &format, std::string_view text,
                              const ExchangeOptions &options, bool goesInto)
{
    try {
        if (format.CanRead() && !(goesInto && format.CanReadInto()))
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

/// Some formats look at each frame.
bool IsShort(const Project &project)
{
    constexpr int kMostFrames = 5000;
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        if (std::static_pointer_cast<CompositionAsset>(asset)->Settings().FrameCount() > kMostFrames)
            return false;
    return !project.Sequence() || project.Sequence()->Settings().FrameCount() <= kMostFrames;
}

/// Lists do not say how many frames a second has, so that those of other formats may be refused.
void WriteAgain(const ExchangeFormat &from, const std::shared_ptr<Project> &project,
                const ExchangeOptions &options)
{
    for (const ExchangeFormat *format : ExchangeFormat::All()) {
        if (!format->CanWrite() || (format != &from && !IsShort(*project)))
            continue;
        try {
            const NarrowString text = format->Write(project, options);
            if (format == &from && format->CanRead() && !Read(*format, text, options, false))
                Fail("what was written is not read");
        } catch (const OperationException &) {
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    static const Fuzz3DEffectFactory effects;
    const auto &formats = ExchangeFormat::All();
    constexpr unsigned int kSmall = 'a' - 'A';
    const auto picked = static_cast<std::uint8_t>((bytes[0] | kSmall) - 'a');
    const bool goesInto = (bytes[0] & kSmall) == 0;
    const ExchangeFormat &format = *formats[picked % formats.size()];
    const std::string_view text(reinterpret_cast<const char *>(bytes) + 1, size - 1);
    LoadReport report;
    ExchangeOptions options;
    options.load.report = &report;
    options.load.keepUnknown = true;
    options.plugins = std::make_shared<FuzzPluginManager>();
    options.effects = &effects;
    options.property = "position";
    format.Recognises(text.substr(0, 4096));
    if (const auto project = Read(format, text, options, goesInto))
        WriteAgain(format, project, options);
    return 0;
}
