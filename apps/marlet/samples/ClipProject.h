#pragma once

#include "document/Document.h"

#include <marlet/foundation/KyPoint.h>

namespace marlet::tool
{

class Arguments;

/// A feature of the picture, which a tracker is to follow.
struct Feature {
    kytl::matl::KyPoint<2, float> position; ///< from the middle of the picture, Y up
    float size = 64;                        ///< pixels
    float searchSize = 160;                 ///< pixels
};

/// From the options "--at", "--feature" and "--search". @throws UsageError
Feature FeatureOption(const Arguments &arguments);

/// A project with a clip in a composition of the clip's own format.
struct ClipProject {
    ProjectPointer project;
    CompositionPointer composition;
    AssetLayerPointer layer;
};

/// The asset is one of the project's, which has nothing else. @throws Failure if it has no video
ClipProject MakeClipProject(const ProjectPointer &project, const MediaPointer &media);

TrackerPointer AddTracker(project::AssetLayer &layer, const Feature &feature);

} // namespace marlet::tool
