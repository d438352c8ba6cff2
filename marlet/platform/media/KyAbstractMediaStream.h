#pragma once

#include <marlet/foundation/Export.h>

namespace kyh::media
{

/// What the streams of a file have in common: the kind by which the file hands them out tells which class it
/// is.
class MARLET_EXPORT KyAbstractMediaStream
{
public:
    virtual ~KyAbstractMediaStream();
};

} // namespace kyh::media
