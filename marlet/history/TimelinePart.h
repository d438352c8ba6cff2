#pragma once

#include <marlet/history/EditedPart.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <variant>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;
class AbstractSequenceTrack;

/// The place of one object on one track.
struct TimelineStand {
    std::shared_ptr<AbstractSequenceTrack> track;
    std::shared_ptr<AbstractSequenceObject> object;
    unsigned int position = 0;
    int startFrame = 0;
    int endFrame = 0;
    bool isThere = false;

    TimelineStand(const std::shared_ptr<AbstractSequenceTrack> &onTrack,
                  const std::shared_ptr<AbstractSequenceObject> &ofObject);
};

/// Where the objects that were announced stood at one moment. To put them back, all of them leave their
/// tracks and come in again in order; the others stay, and so keep their order.
class TimelinePlaces
{
public:
    using Track = std::shared_ptr<AbstractSequenceTrack>;
    using Object = std::shared_ptr<AbstractSequenceObject>;

    void Add(const Track &track, const Object &object);
    void Exchange();
    bool Knows(const Track &track, const Object &object) const;
    const std::vector<TimelineStand> &Stands() const { return stands_; }

private:
    /// From so many objects of a track on, all of it is kept, and put back in one go.
    static constexpr std::size_t kMany = 64;

    struct Key {
        const void *track;
        const void *object;

        bool operator==(const Key &other) const = default;
    };

    struct KeyHash {
        std::size_t operator()(const Key &key) const
        {
            return std::hash<const void *>()(key.track) * 31 + std::hash<const void *>()(key.object);
        }
    };

    struct OfTrack {
        std::vector<std::size_t> stands;
        bool isWhole = false;
    };

    void Append(TimelineStand stand);
    void AddWhole(const Track &track);
    std::vector<unsigned int> FormerPositions(const OfTrack &known) const;
    unsigned int FormerPosition(const TimelineStand &stand) const;

    std::vector<TimelineStand> stands_;
    std::unordered_set<Key, KeyHash> known_;
    std::unordered_map<const void *, OfTrack> tracks_;
};

/// Where the objects of an edit stand on the tracks. A shift is kept as the move that it is; what was
/// announced before it is announced once more behind it, since that may still change.
class TimelinePart final : public EditedPart
{
public:
    using Track = TimelinePlaces::Track;
    using Object = TimelinePlaces::Object;

    explicit TimelinePart(const kytl::KyID &sequence);

    void Touch(const Track &track, const Object &object);
    /// @throws std::invalid_argument if the objects cannot be moved so far
    void ShiftFrom(const Track &track, unsigned int position, int frames);
    /// The same for an edit around the one that shifts.
    void NoteShift(const Track &track, unsigned int position, int frames);
    /// Forgets the shifts behind a moment, for an edit inside of this one that put them back itself.
    std::size_t Moment() const { return epochs_.size(); }
    void ForgetSince(std::size_t moment) { epochs_.resize(moment, Shift()); }
    /// Whether it has no shift and only places that another one has, too, which so is enough for both.
    bool IsCoveredBy(const TimelinePart &other) const;

    /// The frames by which the tracks were shifted, all shifts of one together.
    using ShiftSums = std::unordered_map<Track, std::int64_t>;
    void AddShifts(ShiftSums &sums) const;
    /// All on which something was announced, some more than once.
    void AddTracks(std::vector<Track> &tracks) const;

    void Exchange() override;
    void Describe(ChangeList &changes) const override;
    std::size_t Size() const override;

private:
    struct Shift {
        Track track;
        unsigned int position = 0;
        int frames = 0;
        int firstFrame = 0; ///< the earliest that a moved object stood on, before or after
    };

    using Epoch = std::variant<Shift, TimelinePlaces>;

    TimelinePlaces &Current();
    void Describe(ChangeList &changes, const TimelineStand &stand) const;
    void Describe(ChangeList &changes, const Shift &shift) const;

    kytl::KyID sequence_;
    std::vector<Epoch> epochs_;
    bool isUndone_ = false;
};

} // namespace marlet::project
