#pragma once

#include <marlet/exchange/edl/EdlText.h>
#include <marlet/foundation/KyID.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;
class EditorSequence;

/// What a list says of an object of the sequence, or of what its transition leads to or comes from.
struct EdlEvent {
    std::shared_ptr<AbstractSequenceObject> object; ///< null for black
    std::shared_ptr<AbstractSequenceObject> from;   ///< null for black, which a cut does not have either
    EdlChannels channels;
    EdlKind kind = EdlKind::Cut;
    NarrowString effect; ///< the name of the transition
    int length = 0;
    // In frames of the sequence, whose first is 0, and of the assets.
    long long recordIn = 0;
    long long recordOut = 0;
    long long sourceIn = 0;
    long long sourceOut = 0;
    long long fromSource = 0; ///< the frame of the other source with which the transition begins
};

/// The events of the first video track that holds something and of four audio tracks, in order. What else
/// there is, and what no list can say of objects, is told.
std::vector<EdlEvent> EdlEventsOf(const EditorSequence &sequence, const ExchangeOptions &options);

} // namespace marlet::project
