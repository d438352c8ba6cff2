#include <marlet/editor/AbstractSequenceObject.h>

#include <marlet/editor/SequenceObjectList_Impl.h>

namespace marlet::project
{

AbstractSequenceObject::~AbstractSequenceObject() = default;

void AbstractSequenceObject::TellListOfEndFrame() const
{
    if (const std::shared_ptr<SequenceObjectList_Impl> list = list_->lock())
        list->TakeEndFrame(*this);
}

} // namespace marlet::project
