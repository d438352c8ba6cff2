#pragma once

#include <marlet/exchange/edl/EdlText.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace marlet::project
{

class AbstractAsset;
class Project;

/// The assets of the sources that a list names, which become those of a project. Edits of one file are of one
/// asset, as are those of one clip, and without such notes those of one reel.
class EdlSources
{
public:
    EdlSources(const std::shared_ptr<Project> &project, const EdlList &list, const ExchangeOptions &options);

    /// Null for black.
    std::shared_ptr<AbstractAsset> AssetOf(const EdlEdit &edit) const;
    /// The frame of the asset that has a time code of the source. Files do not say which their first frame
    /// has, so that is guessed where the time codes go beyond their end.
    int AssetFrame(const EdlEdit &edit, int sourceFrame) const;
    /// Whether the asset has these frames, as far as anybody knows.
    bool HasFrames(const EdlEdit &edit, int first, double count) const;

private:
    struct Source {
        std::shared_ptr<AbstractAsset> asset;
        int firstUsed = 0;
        int endUsed = 0;
        int firstFrame = 0;            ///< the time code of the asset's first frame
        const EdlEdit *edit = nullptr; ///< the first that is of it
    };

    WideString PathOf(const EdlEdit &edit) const;
    const Source &SourceOf(const EdlEdit &edit) const { return sources_.at(PathOf(edit)); }
    void Gather(const EdlList &list);
    void Open();
    void GuessFirstFrame(Source &source, const EdlTime &time) const;

    std::shared_ptr<Project> project_;
    const ExchangeOptions &options_;
    double frameRate_;
    std::unordered_map<NarrowString, NarrowString> filesOfClips_;
    std::unordered_map<NarrowString, NarrowString> pathsOfReels_;
    std::unordered_map<WideString, Source> sources_;
    std::vector<WideString> paths_; ///< in the order of the list
};

} // namespace marlet::project
