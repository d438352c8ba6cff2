#pragma once

#include "Common.h"

namespace marlet::python
{

struct ProjectHandle;

// Each adds the classes of a room to the module. Classes that others derive from or take come first.

void BindListing(py::module_ &module);
void BindPropertyClasses(py::module_ &module);
void BindKeyFrame(py::module_ &module);
void BindKeyFrames(py::module_ &module);
void BindReport(py::module_ &module);
void BindSettings(py::module_ &module);
void BindAssets(py::module_ &module);
void BindMedia(py::module_ &module);
void BindFolder(py::module_ &module);
void BindPlugins(py::module_ &module);
void BindEffects(py::module_ &module);
void BindMasks(py::module_ &module);
void BindTrackers(py::module_ &module);
void BindLayer(py::module_ &module);
void BindLayerClasses(py::module_ &module);
void BindText(py::module_ &module);
void BindComposition(py::module_ &module);
void BindSequence(py::module_ &module);
void BindTracks(py::module_ &module);
void BindSequenceObjects(py::module_ &module);
void BindEdits(py::module_ &module);
void BindNotices(py::module_ &module);
void BindProject(py::module_ &module);
void BindLoading(py::module_ &module);
void BindChecks(py::module_ &module);
void BindCompare(py::module_ &module);

// These add to the class of projects what belongs to their rooms.

void BindEditing(py::class_<ProjectHandle> &type);
void BindObserving(py::class_<ProjectHandle> &type);
void BindChecking(py::class_<ProjectHandle> &type);
void BindApplying(py::class_<ProjectHandle> &type);

} // namespace marlet::python
