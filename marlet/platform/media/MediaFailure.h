#pragma once

#include <marlet/platform/media/KyMedia.h>

namespace kyh::media
{

/// Thrown inside; what the interface returns is its code.
struct MediaFailure {
    int code;
};

/// What libav answered of the content of a file.
/// @throws MediaFailure for a result below 0
inline int RequireContent(int result)
{
    if (result < 0)
        throw MediaFailure{kDamaged};
    return result;
}

/// Runs an operation of the interface, which throws nothing.
template <class Operation> int CodeOf(Operation &&operation) noexcept
{
    try {
        operation();
        return kSuccess;
    } catch (const MediaFailure &failure) {
        return failure.code;
    } catch (...) {
        return kFailed;
    }
}

} // namespace kyh::media
