#pragma once

#include <marlet/exchange/otio/OtioLanes.h>
#include <marlet/exchange/otio/OtioPieces.h>

#include <memory>
#include <unordered_set>

namespace marlet::project
{

/// A clip on its way to an object.
struct OtioPlannedClip {
    const Json *item = nullptr;
    int start = 0;
    int end = 0;
    int source = 0;
    kytl::KyID id;     ///< of the object that the text of the project has; null for one that is to be made
    kytl::KyID copied; ///< of the object that this clip is a copy of, made by another program; or null
    std::unique_ptr<LoosePiece> piece;
};

/// A transition that the text of the project does not have.
struct OtioPlannedTransition {
    const Json *item = nullptr;
    int before = 0; ///< frames before the cut
    int after = 0;
    const OtioPlannedClip *from = nullptr; ///< null where the cut is an end of a clip alone
    const OtioPlannedClip *to = nullptr;
};

struct OtioPlannedTrack {
    kytl::KyID id;
    TrackType type{};
    OtioLane lane;
    std::vector<OtioPlannedClip> clips;
    std::vector<OtioPlannedTransition> transitions;
    /// The transitions that the text has, by their IDs.
    std::vector<std::pair<kytl::KyID, const Json *>> known;
};

/// What a timeline is to become: the text of a project, with the tracks and all objects whose text came
/// along, and what has to be made beside these. The timeline must stay.
class OtioPlan
{
public:
    /// @throws ExchangeException
    OtioPlan(const Json &timeline, const ExchangeOptions &options);

    double Rate() const { return rate_; }
    /// Whether the text of the project came along.
    bool HasProject() const { return hasProject_; }
    const NarrowString &ProjectText() const { return text_; }
    std::vector<OtioPlannedTrack> &Tracks() { return tracks_; }
    const Json &Stack() const { return stack_; }
    /// How many times lay between two frames.
    std::size_t RoundedCount() const { return rounded_; }
    /// The nearest frame. @throws ExchangeException for one that no timeline reaches
    int Whole(double frames);

private:
    void TakeProject(const Json &timeline, const ExchangeOptions &options);
    NarrowString TrackText(OtioPlannedTrack &track);
    std::unique_ptr<LoosePiece> PieceOf(const Json &object, const char *what, std::string_view tag) const;
    OtioPlannedClip Planned(const OtioSpan &span, const OtioPlannedTrack &track);
    void PlanTransition(const OtioSpan &span, OtioPlannedTrack &track);
    bool TakeTransition(LoosePiece &piece, const OtioPlannedTransition &transition);

    const Json &stack_;
    double rate_ = 0;
    bool hasProject_ = false;
    NarrowString text_;
    std::vector<OtioPlannedTrack> tracks_;
    std::unordered_set<kytl::KyID> used_; ///< IDs of tracks and objects
    std::size_t rounded_ = 0;
};

} // namespace marlet::project
