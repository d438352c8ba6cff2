#pragma once

#include <marlet/exchange/otio/OtioSchema.h>
#include <marlet/foundation/KyID.h>

#include <unordered_map>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class OtioKept;
class Project;
class SequenceObject;
class TextElement;
struct ExchangeOptions;
struct OtioCuts;

/// Tells of what other programs do not see, but finds its way back.
void TellKept(const ExchangeOptions &options, const NarrowString &what,
              const std::vector<kytl::KyID> &ids = {});

/// How a gap is called among what is kept of a track.
NarrowString GapKey(int start, int end);

/// A factor that a time warp can have; 1 for an object whose speed is none.
double SpeedOf(const SequenceObject &object);

/// Writes objects of a sequence as clips.
class OtioClips
{
public:
    OtioClips(const Project &project, const OtioKept &kept, const ExchangeOptions &options);

    /// The clip of an object at a frame of its track, which is the object's start or, where it cannot stand
    /// there, the end of what is in front of it.
    Json Clip(const SequenceObject &object, int frame, const TextElement &element, const OtioCuts &cuts,
              const kytl::KyID &track);

private:
    double AddMedia(const SequenceObject &object, Json &clip);
    const Json &ReferenceOf(const AbstractAsset *asset);
    void TellOfUnseen(const SequenceObject &object, const OtioCuts &cuts) const;

    const Project &project_;
    const OtioKept &kept_;
    const ExchangeOptions &options_;
    double rate_;
    OtioClock clock_;
    std::unordered_map<const AbstractAsset *, Json> references_;
};

} // namespace marlet::project
