#include "Bindings.h"
#include "Errors.h"

namespace marlet::python
{

PYBIND11_MODULE(_marlet, module)
{
    module.doc() = "The classes of the package marlet.";
    TranslateErrors();
    BindListing(module);
    BindKeyFrame(module);
    BindKeyFrames(module);
    BindPropertyClasses(module);
    BindReport(module);
    BindSettings(module);
    BindAssets(module);
    BindMedia(module);
    BindFolder(module);
    BindPlugins(module);
    BindEffects(module);
    BindMasks(module);
    BindTrackers(module);
    BindLayer(module);
    BindLayerClasses(module);
    BindText(module);
    BindComposition(module);
    BindSequenceObjects(module);
    BindTracks(module);
    BindSequence(module);
    BindEdits(module);
    BindNotices(module);
    BindProject(module);
    BindLoading(module);
    BindChecks(module);
    BindCompare(module);
}

} // namespace marlet::python
