#pragma once

#include <string>
#include <vector>

namespace bench
{

// Clips in MP4 that are made when they are asked for, and are there until the program ends: H.264 where the
// machine's libavcodec has an encoder for it, or else MPEG-4, with sound in AAC. What cannot be made is a
// std::runtime_error.

/// Short ones of a few sizes and lengths, most with sound.
const std::vector<std::string> &ShortClips();
/// Ten thousand names for one of them.
const std::vector<std::string> &ManyClips();
/// 1080p, 500 frames, a key frame in 250.
const std::string &HdClip();
/// Twenty names for it.
const std::vector<std::string> &HdClips();
/// An hour of 320 x 240 with sound.
const std::string &HourClip();
/// A path beside them that goes with them.
std::string FileOfClips(const std::string &name);

constexpr int kHdWidth = 1920;
constexpr int kHdHeight = 1080;
constexpr int kHdFrames = 500;
constexpr int kHdGroup = 250;

} // namespace bench
