#pragma once

#include <marlet/foundation/Export.h>

#include <memory>

namespace kyh::media
{

class KyAbstractMediaStream;

/// An open video or audio file, or an image sequence. KyMediaFileRelease destroys it. Any thread may call it.
class MARLET_EXPORT KyAbstractMediaFile
{
public:
    /// The stream of a kind (kAudioStream, a KyAbstractAudioStream; kVideoStream, a KyAbstractVideoStream),
    /// the same each time, or an empty pointer.
    virtual std::shared_ptr<KyAbstractMediaStream> Stream(int kind) = 0;
    /// Tells the file that an asset was pointed at it. Wakes it.
    virtual void NotifyRelinked() = 0;
    /// Opens a sleeping file again. Returns a code of KyMedia.h, kNothingToReport if it was not asleep.
    virtual int Wake() = 0;
    /// Closes files and decoders and keeps the facts. GetFrame and GetSamples fail until Wake.
    virtual int Sleep() = 0;
    /// Whether frames and samples can be had, after waking where it sleeps: 0, or the code of what stands in
    /// the way as far as is known.
    virtual int State() const = 0;

    virtual ~KyAbstractMediaFile();
};

} // namespace kyh::media
