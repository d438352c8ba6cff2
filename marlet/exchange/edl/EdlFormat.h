#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// Edit decision lists in the form of CMX 3600: the sequence as what is recorded from which reel. A list has
/// no frame rate of its own, and no size.
///
/// | of the project | in a list |
/// | --- | --- |
/// | the first video track that holds something, four audio tracks | V, A, A2 and AUD 3 4; others are lost |
/// | objects, their frames and those of the assets | events, from 01:00:00:00 on |
/// | partners | one event with several channels |
/// | a file | a reel made of its name, and SOURCE FILE |
/// | a composition or a solid | AX, and its name alone: lost |
/// | a transition between two objects or at one end | D or W001, from or to BL; how it looks is lost |
/// | a steady speed | M2, with one digit behind the point |
/// | placement, opacity, levels, effects, key frames | lost |
/// | switches and levels of tracks | lost |
///
/// | of a list | in a project |
/// | --- | --- |
/// | a reel that is not made of the file's name | lost |
/// | time codes of a file | frames of it; where they go beyond its end, its first frame is guessed |
/// | keys, frames that are held, speeds below 0 | lost: cuts, and speeds of 1 and above 0 |
/// | edits that overlap | one track above the other |
/// | other notes | lost |
class EdlFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "edl"; }
    std::string_view Title() const override { return "CMX 3600 edit decision list"; }
    std::vector<std::string_view> Endings() const override { return {".edl"}; }
    std::string_view Holds() const override { return "the cuts of the sequence"; }

    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;

    bool Recognises(std::string_view bytes) const override;
    bool CanRead() const override { return true; }
    std::shared_ptr<Project> Read(std::string_view bytes, const ExchangeOptions &options) const override;
};

} // namespace marlet::project
