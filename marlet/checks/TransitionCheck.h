#pragma once

#include <marlet/checks/CheckScope.h>

namespace marlet::project
{

class AbstractSequenceObject;
class Transition;

/// The objects that stand on tracks, by their IDs; of several with one ID the last.
using ObjectMap = std::unordered_map<kytl::KyID, std::shared_ptr<AbstractSequenceObject>>;

/// Whether the transitions into and out of an object are those of its neighbours, too.
void CheckTransitions(CheckScope &scope, const Place &place,
                      const std::shared_ptr<AbstractSequenceObject> &object, const ObjectMap &objects);

/// "Cross Dissolve"; the plug-in's ID if it is gone.
NarrowString TransitionName(const Transition &transition);

} // namespace marlet::project
