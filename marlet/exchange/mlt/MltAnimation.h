#pragma once

#include <marlet/exchange/StraightLines.h>
#include <marlet/foundation/Strings.h>

namespace marlet::project
{

/// The text of an animated property: "0=10 20;25=30 40", or the numbers alone where they never change. Lines
/// between the key frames are straight; the numbers stay within the tolerance at each frame.
NarrowString MltAnimationText(const FrameSamples<1> &samples, double tolerance);
NarrowString MltAnimationText(const FrameSamples<4> &samples, double tolerance);

/// The shortest text of a number.
NarrowString MltNumber(double number);

} // namespace marlet::project
