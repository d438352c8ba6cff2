#include <marlet/platform/media/MediaResources.h>

namespace kyh::media
{

const MediaResourcesPtr &CommonResources()
{
    static const MediaResourcesPtr common = std::make_shared<MediaResources>();
    return common;
}

} // namespace kyh::media
