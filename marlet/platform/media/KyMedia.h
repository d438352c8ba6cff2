#pragma once

#include <marlet/foundation/Export.h>

namespace kyh::media
{

class KyAbstractMediaFile;

// What the operations on media return. A MediaAsset's status follows from them: 0 is usable, kNoPermission,
// kNotFound and kNotAFile give status 1 (not there), kUnknownFormat and kDamaged status 2 (not readable), all
// others status 3.

constexpr int kSuccess = 0;
constexpr int kFailed = 1; ///< anything that none of the others says
constexpr int kBufferTooSmall = 7;
constexpr int kOutOfRange = 8;     ///< no such frame
constexpr int kNotFound = 9;       ///< no file of that name
constexpr int kUnknownFormat = 10; ///< no decoder knows it, or nothing to see or hear is in it
constexpr int kDamaged = 13;       ///< the file or the part asked for does not decode
constexpr int kNoPermission = 14;
constexpr int kAsleep = 17;
constexpr int kNothingToReport = 18;
constexpr int kNotAFile = 20; ///< a directory, a device

/// Opens a video or audio file, or a still image as a clip of one frame. Sets `*file` and returns 0, or
/// leaves it and returns a code. Paths are UTF-16 and zero-terminated. Writes nothing to the terminal, throws
/// nothing.
MARLET_EXPORT int KyMediaFileCreate(const char16_t *path, KyAbstractMediaFile **file);
/// The same for an image sequence, of which `path` names any member. Its members are the files of the folder
/// with the same name around a number of the same count of digits, from the lowest number to the highest; a
/// missing number repeats the frame before it.
MARLET_EXPORT int KyImageSequenceCreate(const char16_t *path, double frameRate, KyAbstractMediaFile **file);
/// Destroys a file; null is ignored. Streams that somebody still holds stay usable.
MARLET_EXPORT int KyMediaFileRelease(KyAbstractMediaFile *file);

} // namespace kyh::media
