#include <marlet/editor/AbstractSequenceTrack.h>

namespace marlet::project
{

AbstractSequenceTrack::~AbstractSequenceTrack() = default;

} // namespace marlet::project
