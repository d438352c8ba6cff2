#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

namespace marlet::project
{

class SequenceObjectList;

enum class TrackType : int { Video, Audio };

/// A lane of the editor timeline.
class MARLET_EXPORT AbstractSequenceTrack
{
public:
    virtual ~AbstractSequenceTrack();

    virtual const kytl::KyID &ID() const = 0;
    virtual TrackType Type() const = 0;
    virtual const WideString &Name() const = 0;
    virtual void SetName(const WideString &name) = 0;
    virtual SequenceObjectList &Objects() = 0;
    virtual const SequenceObjectList &Objects() const = 0;
};

} // namespace marlet::project
