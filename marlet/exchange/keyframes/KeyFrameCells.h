#pragma once

#include <marlet/animation/KeyFrame.h>
#include <marlet/exchange/keyframes/KeyFrameRows.h>

namespace marlet::project
{

/// A key frame as a row says it, with the ID that it is to have: the null ID for a new one.
struct KeyFrameOfRow {
    KeyFrame key;
    kytl::KyID id;
};

/// @param model a value of the type that it must have
/// @throws ExchangeException with the line
KeyFrameOfRow ReadRow(const KeyFrameRow &row, const PropertyValue &model, double frameRate);

} // namespace marlet::project
