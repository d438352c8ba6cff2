#include <marlet/editor/AbstractSequenceObject.h>

namespace marlet::project
{

AbstractSequenceObject::~AbstractSequenceObject() = default;

} // namespace marlet::project
