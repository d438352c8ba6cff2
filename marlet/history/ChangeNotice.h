#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace marlet::project
{

enum class ObjectKind : int {
    Project,
    Folder,
    Asset,
    Layer,
    Mask,
    PathPoint,
    Tracker,
    TrackingPoint,
    Effect,
    Transition,
    Sequence,
    Track,
    SequenceObject,
    /// What a host's own part of an edit is about. With the ID of a layer, an asset, an effect, an object or
    /// the sequence it makes stale what shows that; with any other one nothing.
    HostObject,
};

/// What of an object may be another one. Values are bits.
enum class Aspect : unsigned int {
    Name = 1U << 0,
    /// Where it stands in time, and which frames of its asset it shows. Of a track: where its objects stand,
    /// of which any may have moved without being named.
    Frames = 1U << 1,
    Settings = 1U << 2,   ///< switches, sizes, colours, formats: plain values
    Links = 1U << 3,      ///< objects that it names by ID: parent, folder, asset, partner, transition
    Members = 1U << 4,    ///< what is in its lists, and in which order
    Properties = 1U << 5, ///< values, key frames and expressions
    Text = 1U << 6,
    File = 1U << 7,
    PrivateData = 1U << 8, ///< of a plug-in
    View = 1U << 9,        ///< what only a panel of the host shows
};

class MARLET_EXPORT Aspects
{
public:
    constexpr Aspects() = default;
    constexpr Aspects(Aspect aspect) : bits_(static_cast<unsigned int>(aspect)) {}

    constexpr bool Has(Aspect aspect) const { return (bits_ & static_cast<unsigned int>(aspect)) != 0; }
    constexpr bool IsEmpty() const { return bits_ == 0; }
    constexpr Aspects &operator|=(Aspects other)
    {
        bits_ |= other.bits_;
        return *this;
    }
    constexpr bool operator==(const Aspects &other) const = default;

private:
    unsigned int bits_ = 0;
};

/// The times at which a property may have another value, both ends included, in milliseconds relative to the
/// owner. All times if a static value or the whole curve is another one.
struct PropertyChange {
    NarrowString name;
    int firstTime = std::numeric_limits<int>::min();
    int lastTime = std::numeric_limits<int>::max();
};

/// What became another one about an object. It may be gone from the project.
struct ObjectChange {
    ObjectKind kind = {};
    kytl::KyID id;
    Aspects aspects;
    std::vector<PropertyChange> properties;
    /// The objects that came into its lists and that left them. An object that only changed its place in a
    /// list is in neither.
    std::vector<kytl::KyID> added;
    std::vector<kytl::KyID> removed;
};

/// Frames of a composition or of the sequence whose picture or sound may be another one; the end is
/// exclusive.
struct StaleFrames {
    kytl::KyID timeline;
    int first = 0;
    int end = 0;
};

enum class ChangeCause : int { Commit, Undo, Redo };

/// What an edit, an undo or a redo changed. Everything that is another one is told; what is told may be as
/// it was before. Valid while observers are called.
class MARLET_EXPORT ChangeNotice
{
public:
    using StaleSearch = std::function<std::vector<StaleFrames>(const std::vector<ObjectChange> &)>;

    ChangeNotice(ChangeCause cause, WideString label, std::vector<ObjectChange> changes, StaleSearch stale);
    ~ChangeNotice();

    ChangeCause Cause() const { return cause_; }
    /// Of the edit.
    const WideString &Label() const { return label_; }
    /// Each object once, in the order in which the edit came to them.
    const std::vector<ObjectChange> &Changes() const { return changes_; }
    /// Each timeline once, with the frames around all that may look or sound different there: through the
    /// parents of layers, effects that refer to layers, cameras, lights, and compositions that show others.
    /// Worked out when it is first asked for, in a walk over the project.
    const std::vector<StaleFrames> &Stale() const;

private:
    ChangeCause cause_;
    WideString label_;
    std::vector<ObjectChange> changes_;
    mutable StaleSearch search_;
    mutable std::vector<StaleFrames> stale_;
};

/// Hears of each change of a history, on the thread that edits.
class MARLET_EXPORT ChangeObserver
{
public:
    virtual ~ChangeObserver();

    /// May add and remove observers, but neither edit nor undo. What it throws is handed to the history's
    /// failure function; the other observers are called all the same.
    virtual void Changed(const ChangeNotice &notice) = 0;

protected:
    ChangeObserver() = default;
    ChangeObserver(const ChangeObserver &) = default;
    ChangeObserver &operator=(const ChangeObserver &) = default;
};

} // namespace marlet::project
