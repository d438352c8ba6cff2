#pragma once

#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/files/FileSource.h>

namespace kyh::media
{

/// Makes sure which frames come of the packets of an index, by decoding where their times do not tell: both
/// ends of the clip, or all of it.
/// @throws MediaFailure if nothing decodes
void OrderFrames(const FileSourcePtr &source, int stream, FrameIndex &index);

} // namespace kyh::media
