#pragma once

#include <marlet/foundation/Strings.h>

namespace marlet::project
{

/// A frame number as hours, minutes, seconds and frames. At 23.976, 29.97 and 59.94 frames per second it
/// counts in drop-frame: numbers are left out at each minute except every tenth, so that it keeps pace with
/// the clock. A plain value; the four numbers are never negative, the sign is a field of its own.
struct MARLET_EXPORT TimeCode {
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    int frames = 0;
    /// Frames per second.
    double frameRate = 30.0;
    bool negative = false;

    static bool IsDropTimeCode(double rate);

    /// Drop-frame time codes wrap at 24 hours, others do not. A rate below 1 gives all zeros.
    static TimeCode FromFrame(int frame, double rate);

    /// Reads one or two digits for each of four numbers, with ":", ";" or "|" between them and a "-" before
    /// them. False, with the result untouched, for any other text, and for a rate of 0 or below.
    /// @throws std::invalid_argument if the text is null
    static bool FromString(const char16_t *text, double rate, TimeCode &result);

    int ToFrame() const;

    /// The magnitude in whole seconds, without frames and sign.
    int TotalSeconds() const;

    NarrowString ToString() const;
    WideString ToWideString() const;
};

} // namespace marlet::project
