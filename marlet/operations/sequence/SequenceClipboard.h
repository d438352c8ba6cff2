#pragma once

#include <marlet/operations/sequence/SequencePlacing.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;
class AbstractSequenceTrack;
class Project;
struct CopiedObjects_Impl;

/// Copies of objects of a sequence: how they lie to one another in time and on tracks, which are partners,
/// and the transitions between them and at their own ends. It shares nothing with the objects, and stays as
/// it is whatever becomes of them; copies of it are cheap. Belongs to the thread that edits the project.
class MARLET_EXPORT CopiedObjects
{
public:
    using Objects = std::vector<std::shared_ptr<AbstractSequenceObject>>;

    /// Partners come along if that is asked for. Transitions whose plug-in is gone stay behind.
    /// @throws OperationException for no objects, and one that is on no track of the project
    CopiedObjects(const std::shared_ptr<Project> &project, const Objects &objects, Partner partner);
    CopiedObjects(const CopiedObjects &other);
    CopiedObjects &operator=(const CopiedObjects &other);
    ~CopiedObjects();

    unsigned int Count() const;
    /// Frames of the sequence, from the first start to the last end.
    int Length() const;

    /// Puts new objects into the sequence that they were copied from, as one Edit. The first of them starts
    /// on the frame. Those of the first track of each type come onto the track that is given for it, or else
    /// onto their own, the others as many tracks further as they were. Returns them by track and time.
    /// @throws OperationException where PlaceAsset does, for another sequence, and for a track that is not
    /// there
    Objects Paste(const std::shared_ptr<Project> &project, int start,
                  const std::shared_ptr<AbstractSequenceTrack> &video = {},
                  const std::shared_ptr<AbstractSequenceTrack> &audio = {}, PlaceMode mode = PlaceMode::Free,
                  const TrackChoice &ripple = TrackChoice::None()) const;

private:
    std::shared_ptr<const CopiedObjects_Impl> impl_;
};

} // namespace marlet::project
