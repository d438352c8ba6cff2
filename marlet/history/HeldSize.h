#pragma once

#include <cstddef>

namespace marlet::project
{

class Abstract3DEffect;
class AbstractAsset;
class AbstractLayer;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class BinFolder;
class EditorSequence;
class Mask;
class PathPoint;
class PluginInstance;
class PropertyManager;
class Tracker;
class TrackingPoint;

// About how many bytes an object takes with all that it owns, so that a history knows what it keeps alive of
// what was taken out of the project. What plug-ins keep is asked of them.

std::size_t HeldSize(const PropertyManager &properties);
std::size_t HeldSize(const PluginInstance &instance);
std::size_t HeldSize(const PathPoint &point);
std::size_t HeldSize(const Mask &mask);
std::size_t HeldSize(const TrackingPoint &point);
std::size_t HeldSize(const Tracker &tracker);
std::size_t HeldSize(const Abstract3DEffect &effect);
std::size_t HeldSize(const AbstractLayer &layer);
std::size_t HeldSize(const AbstractAsset &asset);
std::size_t HeldSize(const BinFolder &folder); ///< with the folders in it; it owns no assets
std::size_t HeldSize(const AbstractSequenceObject &object);
std::size_t HeldSize(const AbstractSequenceTrack &track);
std::size_t HeldSize(const EditorSequence &sequence);

} // namespace marlet::project
