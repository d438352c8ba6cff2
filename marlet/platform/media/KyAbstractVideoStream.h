#pragma once

#include <marlet/platform/media/KyAbstractMediaStream.h>
#include <marlet/platform/media/KyMediaTypes.h>

#include <memory>

namespace kyh::media
{

class KyAbstractCodecInfo;

/// The pictures of an open file, at the file's own rate. Facts may be asked on any thread; GetFrame calls
/// wait for one another. A stream keeps what it needs of its file alive.
class MARLET_EXPORT KyAbstractVideoStream : public KyAbstractMediaStream
{
public:
    /// Pixels, after turning the picture as the file says.
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    /// Width of a pixel divided by its height, 1 if the file does not say; after turning, too.
    virtual double PixelAspectRatio() const = 0;
    virtual int FrameCount() const = 0;
    /// Frames per second, the average of a variable rate; 0 if nothing tells it.
    virtual double FrameRate() const = 0;
    /// 2 for bottom field first, 3 for top field first, another value for whole frames.
    virtual int FieldOrder() const = 0;
    virtual KyVideoCodec Codec() const = 0;
    virtual std::shared_ptr<KyAbstractCodecInfo> CodecInfo() const = 0;
    /// Of the stored picture, 24 or 32: whether it has an alpha channel.
    virtual int PixelBitCount() const = 0;
    virtual KyChannelOrder PixelChannelOrder() const = 0;
    /// Bytes of a frame: rows without padding.
    virtual int FrameBufferSize(KyImageChannels channels) const = 0;
    /// Writes frame number `frame`, from 0, into the buffer: the same picture whatever was asked before.
    /// `out`, which may be null, takes the bytes written. Bit 0 of the flags is free for a host's decoder and
    /// changes nothing here. Returns 0, or one of the codes of KyMedia.h; the buffer's content is then
    /// unspecified, and nothing was written beyond its size.
    virtual int GetFrame(int frame, KyImageChannels channels, unsigned char *buffer, int size, int *out,
                         int flags) = 0;
};

} // namespace kyh::media
