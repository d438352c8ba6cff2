#pragma once

#include <marlet/exchange/ExchangeFormat.h>

namespace marlet::project
{

/// The XML of the MLT framework, of version 7: the sequence, to be played and rendered by melt. Only written.
///
/// | of the project | in MLT |
/// | --- | --- |
/// | format of the sequence | the profile |
/// | tracks with names and switches | playlists, blended from below over black; sounds are summed |
/// | media, images, solids | producers, one for each object; at a speed by timewarp |
/// | compositions, effects, changing speeds | lost |
/// | position, anchor point, scale, rotation | affine, with key frames that are right at each frame |
/// | scales below 0 | lost: not mirrored |
/// | opacity, transitions at one end | brightness of alpha alone |
/// | levels, fades of sound, mute | volume |
/// | transitions between two pictures | luma without a map: a dissolve, whatever they are here |
/// | those between two sounds | mix |
/// | dissolves on upper tracks of pictures that leave some of the frame free | near to it only |
/// | pixels of the sequence that are no squares | sizes are not theirs |
class MltFormat final : public ExchangeFormat
{
public:
    std::string_view Name() const override { return "mlt"; }
    std::string_view Title() const override { return "MLT XML"; }
    std::vector<std::string_view> Endings() const override { return {".mlt"}; }
    std::string_view Holds() const override { return "the sequence"; }

    bool CanWrite() const override { return true; }
    NarrowString Write(const std::shared_ptr<Project> &project,
                       const ExchangeOptions &options) const override;
};

} // namespace marlet::project
