#pragma once

#include <marlet/animation/KeyFrameList_Impl.h>

namespace marlet::project
{

/// Keeps what callbacks are handed, whatever they do to the list: key frames that are removed and a list that
/// ends stay until its last walk is over.
class KeyFrameWalk
{
public:
    explicit KeyFrameWalk(const KeyFrameList_Impl &list);
    KeyFrameWalk(const KeyFrameWalk &) = delete;
    KeyFrameWalk &operator=(const KeyFrameWalk &) = delete;
    ~KeyFrameWalk();

    /// Calls a function for those of the key frames in the beginning that are still in the list when their
    /// turn comes, until it returns true. Whether it did.
    template <class Visit> bool Forward(Visit &&visit) const
    {
        return Go(nodes_.begin(), nodes_.end(), visit);
    }
    template <class Visit> bool Backward(Visit &&visit) const
    {
        return Go(nodes_.rbegin(), nodes_.rend(), visit);
    }

    /// What a list does in the end.
    static void Release(ValuePtr<KeyFrameList_Impl> list);

private:
    template <class Iterator, class Visit> static bool Go(Iterator node, Iterator end, Visit &visit)
    {
        return std::any_of(node, end, [&](KeyFrameNode *n) { return n->IsInList() && visit(n->key); });
    }

    const KeyFrameList_Impl &list_;
    std::vector<KeyFrameNode *> nodes_;
};

} // namespace marlet::project
