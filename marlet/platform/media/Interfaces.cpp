#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/KyAbstractCodecInfo.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyAbstractMediaStream.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>

namespace kyh::media
{

KyAbstractMediaFile::~KyAbstractMediaFile() = default;
KyAbstractMediaStream::~KyAbstractMediaStream() = default;
KyAbstractCodecInfo::~KyAbstractCodecInfo() = default;

} // namespace kyh::media
