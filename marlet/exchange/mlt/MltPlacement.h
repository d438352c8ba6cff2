#pragma once

#include <marlet/foundation/Strings.h>

#include <optional>

namespace marlet::project
{

class AbstractAsset;
class AbstractSequenceObject;
class AudioVideoSettings;
struct ExchangeOptions;

/// Frames of an object that an entry shows, from its start on; they may lie before it and behind its end,
/// where a transition shows more of it.
struct MltFrames {
    long long first = 0;
    long long count = 0;
};

/// Where a picture is put: texts of animated properties of the filters that do it, whose frames count from
/// the first of the entry. Nothing for a filter that would change nothing.
struct MltPlacement {
    std::optional<NarrowString> rectangle; ///< x, y, width and height from the upper left corner, in pixels
    std::optional<NarrowString> rotation;  ///< degrees, clockwise, about the middle of that
    std::optional<NarrowString> opacity;   ///< 0 to 1
};

/// Worked out for each frame, with the fades of transitions at one end.
/// @param pixelAspect that of the asset
/// @throws OperationException if there are more frames than can be worked out, here and below
MltPlacement MltPlacementOf(const AbstractSequenceObject &object, const AbstractAsset &asset,
                            const AudioVideoSettings &settings, const MltFrames &frames, double pixelAspect,
                            const ExchangeOptions &options);

/// The level of a sound in decibels, with fades; nothing if it is as recorded.
std::optional<NarrowString> MltLevelOf(const AbstractSequenceObject &object,
                                       const AudioVideoSettings &settings, const MltFrames &frames);

} // namespace marlet::project
