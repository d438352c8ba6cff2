#pragma once

#include <marlet/exchange/otio/OtioKept.h>
#include <marlet/exchange/otio/OtioMedia.h>
#include <marlet/exchange/otio/OtioPlan.h>

#include <unordered_map>

namespace marlet::project
{

class AbstractSequenceTrack;
class EditorSequence;
class SequenceObject;

/// Makes the tracks of a sequence what a plan says, with what the text of the project did not have.
class OtioObjects
{
public:
    OtioObjects(Project &project, OtioPlan &plan, const ExchangeOptions &options);

    void Run();
    const OtioKept &Kept() const { return kept_; }

private:
    using Object = std::shared_ptr<SequenceObject>;

    Object Known(const kytl::KyID &id) const;
    bool ShowsOther(const OtioPlannedClip &clip, TrackType type) const;
    void SetUpTrack(const OtioPlannedTrack &planned);
    void SetUpClip(const OtioPlannedClip &clip, const std::shared_ptr<AbstractSequenceTrack> &track);
    Object Made(const OtioPlannedClip &clip, TrackType type);
    void SetUpTransition(const OtioPlannedTransition &planned);
    void KeepClip(const Json &clip, const SequenceObject &object);
    void KeepMedia(const Json &clip, const SequenceObject &object);
    void KeepItem(const kytl::KyID &id, Json part, const NarrowString &name);
    void TakePictureSize();

    Project &project_;
    OtioPlan &plan_;
    const ExchangeOptions &options_;
    std::shared_ptr<EditorSequence> sequence_;
    OtioAssets assets_;
    OtioKept kept_;
    std::unordered_map<const OtioPlannedClip *, Object> objects_;
};

} // namespace marlet::project
