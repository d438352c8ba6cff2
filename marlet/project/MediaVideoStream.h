#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/platform/media/KyMediaTypes.h>

#include <memory>

namespace boost
{
template <class T> class shared_array;
}

namespace kyh::media
{
class KyAbstractCodecInfo;
class KyAbstractVideoStream;
} // namespace kyh::media

namespace marlet::project
{

class MediaAsset;

/// The pictures of a media asset, with the user's overrides of rate, fields and pixel aspect, and at a
/// project's frame rate. A stream must not outlive its asset, nor the project's MediaManager.
///
/// GetFrame may be called from any thread: it holds the asset's lock from its start to its end.
class MARLET_EXPORT MediaVideoStream
{
public:
    int Width() const;  ///< pixels
    int Height() const; ///< pixels
    /// Frames at the file's own rate, whatever the overrides.
    int FrameCount() const;
    /// Frames at another rate: the length in seconds stays.
    int FrameCount(double frameRate) const;
    /// Frames per second: the override, or else the file's rate.
    double FrameRate() const;
    double OriginalFrameRate() const; ///< at least 1
    PAR AspectRatio() const;
    PAR OriginalAspectRatio() const;
    VideoFields FieldsType() const;
    VideoFields OriginalFieldsType() const;
    kyh::media::KyVideoCodec Codec() const;
    std::shared_ptr<kyh::media::KyAbstractCodecInfo> CodecInfo() const;
    int PixelBitCount() const;
    kyh::media::KyChannelOrder PixelChannelOrder() const;
    int FrameBufferSize(kyh::media::KyImageChannels channels) const; ///< bytes

    // Each returns 0, 8 for a frame that is not there, or another code of the media layer.

    /// A frame at the file's own rate.
    int GetFrame(int frame, kyh::media::KyImageChannels channels, unsigned char *buffer, int size, int *out,
                 int flags) const;
    /// The frame that is shown at a project's frame.
    int GetFrame(double frameRate, int frame, kyh::media::KyImageChannels channels, unsigned char *buffer,
                 int size, int *out, int flags) const;
    /// The same with four channels, scaled down to fit into a size if it is larger. The caller keeps the
    /// scratch array between calls; it grows when it must. Width and height take the size of the result. A
    /// result that does not fit the destination copies nothing and gives a code.
    int GetFrame(double frameRate, int frame, int maxWidth, int maxHeight,
                 boost::shared_array<unsigned char> &scratch, unsigned int &scratchSize,
                 const boost::shared_array<unsigned char> &destination, unsigned int destinationSize,
                 int *width, int *height, int flags) const;

private:
    friend class MediaAsset;

    MediaVideoStream(std::shared_ptr<kyh::media::KyAbstractVideoStream> stream, const MediaAsset *asset);

    /// The file's frame for a project's frame, or -1 if there is none.
    int FileFrame(double frameRate, int frame) const;

    const MediaAsset *asset_;
    std::shared_ptr<kyh::media::KyAbstractVideoStream> stream_;
};

} // namespace marlet::project
