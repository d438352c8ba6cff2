#pragma once

#include <marlet/editor/EditorSequence.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/project/MediaAsset.h>

namespace marlet::project
{

/// What a file may say of an object although no setter of it takes that, or no getter tells it as it is. An
/// undo has to bring it back all the same.
class StoredFields
{
public:
    template <class Timeline> static void SetInPoint(Timeline &timeline, int frame)
    {
        timeline.RestoreInPoint(frame);
    }

    template <class Layer> static void SetDimensions(Layer &layer, LayerDimensions dimensions)
    {
        layer.RestoreDimensions(dimensions);
    }

    template <class Layer> static void SetAutoOrientation(Layer &layer, AutoOrient mode)
    {
        layer.RestoreAutoOrientation(mode);
    }

    static void SetBounds(TextLayer &layer, float minX, float maxX, float minY, float maxY)
    {
        layer.RestoreBounds(minX, maxX, minY, maxY);
    }

    static int TrimmerInPoint(const MediaAsset &asset) { return asset.StoredTrimmerInPoint(); }
    static int TrimmerOutPoint(const MediaAsset &asset) { return asset.StoredTrimmerOutPoint(); }
};

} // namespace marlet::project
