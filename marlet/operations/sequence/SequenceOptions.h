#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceTrack;

/// Whether the partner of an object goes along.
enum class Partner { GoesAlong, Stays };

/// Some tracks of a sequence. As the ripple of an operation: those on which what lies behind moves as frames
/// come or go, beside the tracks of what is edited, which are always among them unless there is no ripple at
/// all.
class MARLET_EXPORT TrackChoice
{
public:
    static TrackChoice None();
    static TrackChoice All();
    /// @throws std::invalid_argument for a null pointer among them
    static TrackChoice Of(std::vector<std::shared_ptr<AbstractSequenceTrack>> tracks);
    ~TrackChoice();
    TrackChoice(const TrackChoice &other);
    TrackChoice &operator=(const TrackChoice &other);

    bool IsNone() const { return !all_ && tracks_.empty(); }
    bool Has(const AbstractSequenceTrack &track) const;

private:
    TrackChoice();

    bool all_ = false;
    std::vector<std::shared_ptr<AbstractSequenceTrack>> tracks_;
};

} // namespace marlet::project
