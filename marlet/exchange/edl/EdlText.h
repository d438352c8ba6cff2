#pragma once

#include <marlet/foundation/Strings.h>

#include <string_view>
#include <vector>

namespace marlet::project
{

struct ExchangeOptions;

// The words of an edit decision list in the form of CMX 3600. Times are frames from 00:00:00:00 on, ends are
// exclusive.

enum class EdlKind { Cut, Dissolve, Wipe };

/// The most frames a second that two digits count.
inline constexpr double kMostEdlRate = 100;

/// How a list counts frames.
struct EdlTime {
    double frameRate = 25; ///< of what is cut
    bool isDrop = false;   ///< the numbers leave some out, to keep pace with the clock

    /// 29.97 and 59.94 have drop-frame numbers, by custom.
    static EdlTime Of(double frameRate);

    NarrowString Text(long long frame) const;
    int FramesPerSecond() const;
    /// The rate by which TimeCode counts as the list does.
    double CountingRate() const;
};

/// The picture and the channels of sound that an edit is of, from 1 on.
struct EdlChannels {
    bool picture = false;
    std::vector<int> sound;

    bool operator==(const EdlChannels &) const = default;
};

/// A line of an event: which frames of a source are recorded where.
struct EdlEdit {
    int line = 0; ///< of the text
    NarrowString number;
    NarrowString reel;
    EdlChannels channels;
    EdlKind kind = EdlKind::Cut;
    int length = 0; ///< of the transition, which starts with the edit
    int sourceIn = 0;
    int sourceOut = 0;
    int recordIn = 0;
    int recordOut = 0;
    double speed = 1; ///< a factor, below 0 for backwards
    NarrowString clip;
    NarrowString file;

    bool IsBlack() const { return reel == "BL" || reel == "BLACK"; }
    /// Recorded for no frames: the first line of an event whose second is a transition, which begins with it.
    bool IsEmpty() const { return recordOut == recordIn; }
};

struct EdlList {
    NarrowString title;
    EdlTime time;
    std::vector<EdlEdit> edits; ///< in the order of the text
};

/// Takes what other programs write: tabs, small letters, any line ends, no title, notes of all kinds. What
/// has no meaning here is told in the report. @throws ExchangeException
EdlList ParseEdl(std::string_view text, const ExchangeOptions &options);
/// Whether the first lines are a title, a frame code mode or an event.
bool LooksLikeEdl(std::string_view text);

/// What a name becomes as that of a reel: eight capital letters, digits and underscores at most.
NarrowString EdlReelName(std::string_view name);

} // namespace marlet::project
