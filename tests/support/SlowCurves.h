#pragma once

#include <marlet/animation/KeyFrameList.h>

#include <map>

namespace marlet::test
{

// What curves are, worked out the long way round: every table is an ordered map that is built anew for each
// question from the key frames as they stand.

enum class Stretches {
    All,
    /// Leaves out those that lie outside the piece by their control values: without that, a handle far away
    /// would fill the memory.
    NearThePiece,
};

/// Parameters of the time curve between two key frames, by time.
std::map<int, double> SlowTemporalTable(const project::KeyFrame &a, const project::KeyFrame &b,
                                        Stretches stretches);
double SlowParameter(const std::map<int, double> &table, int time);

/// The value of a list at a time.
project::PropertyValue SlowValueAt(const project::KeyFrameList &list, int time, bool isSpatialProperty);

/// A value with every bit of it, so that texts are equal where values are the same.
std::string Exactly(const project::PropertyValue &value);

} // namespace marlet::test
