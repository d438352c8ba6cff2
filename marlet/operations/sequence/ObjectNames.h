#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class AbstractSequenceObject;
class AbstractSequenceTrack;
class EditorSequence;
class Transition;

// How people call what is in a sequence, and find it again by that. What is not found, or not clearly meant,
// is an OperationException that names what there is. Belongs to the thread that edits the project.

/// By ID or by a name that only one of them has.
MARLET_EXPORT std::shared_ptr<AbstractSequenceTrack> FindTrack(const EditorSequence &sequence,
                                                               const WideString &idOrName);
/// By ID, NAME, TRACK/NAME or TRACK@FRAME. A name that only an object and its partner have is that of the one
/// on the earlier track.
MARLET_EXPORT std::shared_ptr<AbstractSequenceObject> FindObject(const EditorSequence &sequence,
                                                                 const WideString &text);

/// "Cross Dissolve"; the plug-in's ID if it is gone.
MARLET_EXPORT WideString NameOf(const Transition &transition);
/// "from "Sea" to "Sky"", "at the head", "at the tail". An object that is not there is named by its ID.
MARLET_EXPORT WideString PlaceOf(const EditorSequence &sequence, const Transition &transition);

} // namespace marlet::project
