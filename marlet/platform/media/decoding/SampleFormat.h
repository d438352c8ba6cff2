#pragma once

struct AVFrame;

namespace kyh::media
{

/// Bytes of a sample that holds what libav's format does: 2, or 4 for more than 16 bits.
int BytesPerSample(int format);

/// Writes `count` samples of each channel, interleaved, from sample `from` of a decoded frame on. Channels
/// that the frame lacks are silent. What floating samples have beyond full scale is clipped.
void CopySamples(const AVFrame &frame, int from, int count, int channels, int bytesPerSample,
                 unsigned char *to);

} // namespace kyh::media
