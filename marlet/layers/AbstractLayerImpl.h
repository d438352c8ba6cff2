#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/layers/CachedLink.h>
#include <marlet/project/CompositionAsset.h>

namespace marlet::project
{

/// The IDs are what is stored; the links beside them only save looking them up.
struct AbstractLayer_Impl {
    kytl::KyID id;
    std::shared_ptr<PropertyManager> properties;
    WideString name;
    CachedLink<CompositionAsset> parentComposition;
    CachedLink<AbstractLayer> parentLayer;
    kytl::KyID parentCompositionID;
    kytl::KyID parentLayerID;
    int startFrame = 0;
    int endFrame = 0;
    Blend blendMode = {};
    bool visible = true;
    bool selected = false;
    bool muted = false;
    bool locked = false;
    bool motionBlur = false;
    KeptXml kept; ///< of the element of its class
};

} // namespace marlet::project
