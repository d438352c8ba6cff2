#include <marlet/animation/KeyFrameWalk.h>

namespace marlet::project
{

KeyFrameWalk::KeyFrameWalk(const KeyFrameList_Impl &list) : list_(list.InOrder())
{
    nodes_.reserve(list.Size());
    for (const KeyFramePlace &place : list.places)
        nodes_.push_back(place.node);
    const kytl::thread::KyScopedLock lock(list_.lock_);
    ++list_.walks_;
}

KeyFrameWalk::~KeyFrameWalk()
{
    std::unique_ptr<const KeyFrameList_Impl> ended; // beyond its lock
    const kytl::thread::KyScopedLock lock(list_.lock_);
    if (--list_.walks_ > 0)
        return;
    list_.DestroyRemoved();
    ended = std::move(list_.self_);
}

void KeyFrameWalk::Release(ValuePtr<KeyFrameList_Impl> list)
{
    if (list->walks_ == 0)
        return;
    list->LetGoOfKeyFrames();
    const KeyFrameList_Impl &ended = *list;
    ended.self_ = list.Release();
}

} // namespace marlet::project
