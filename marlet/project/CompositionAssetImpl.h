#pragma once

#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/CompositionRenderSettings.h>
#include <marlet/project/LayerIndex.h>
#include <marlet/project/PanelRenderState.h>

namespace marlet::project
{

/// What a copy takes over as it is, and what a file is read into aside.
struct CompositionFields {
    kytl::KyID id;
    WideString name;
    AudioVideoSettings settings{AudioVideoSettings::Preset::None, 0};
    CompositionRenderSettings renderSettings;
    kytl::KyID parentFolderID;
    int currentTimeIndicator = 0;
    int inPoint = 0;
    int outPoint = 0;
    double timelineZoom = 0;
    int splitterPosition = 440;
    TimeFormat timelineTimeFormat{1000};
    SnapMode timelineSnapMode{1000};
    KeptXml kept;
};

struct CompositionAsset_Impl : CompositionFields {
    Uncopied<AbstractAsset::InstanceList> instances;
    /// A copy has layers of its own, which Clone makes.
    Uncopied<CompositionAsset::LayerList> layers;
    Uncopied<LayerIndex> layersByID;
    PanelRenderState viewerPanelState;
    PanelRenderState layerPanelState;
};

} // namespace marlet::project
