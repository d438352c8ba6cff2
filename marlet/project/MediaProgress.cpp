#include <marlet/project/MediaProgress.h>

namespace marlet::project
{

MediaProgress::~MediaProgress() = default;

} // namespace marlet::project
